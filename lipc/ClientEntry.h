// The record of one client, for example of a bus or of the agent, in the host's session segment.
#pragma once

#include "lipc/ClientID.h"
#include "lipc/SHMString.h"

#include <array>
#include <cstdint>
#include <string_view>

namespace LIPC {

/// Returns the number that `ClientEntry::type` contains for a client type of four letters. The first letter
/// is the most significant byte.
constexpr std::int32_t clientType(const char (&letters)[5])
{
    std::uint32_t code = 0;
    for (int i = 0; i < 4; ++i)
        code = code << 8 | static_cast<unsigned char>(letters[i]);
    return static_cast<std::int32_t>(code);
}

constexpr std::int32_t kMixEngineType = clientType("KMIX");
constexpr std::int32_t kBusType = clientType("KBUS");

/// The record of a client, in the session segment or as a copy in this process. Other processes may write the
/// record in the segment at any time, without a lock.
struct ClientEntry {
    static constexpr int kParameters = 128;
    static constexpr int kStrings = 10;

    ClientEntry() = default;
    /// Copies a record that another process may be changing. If the record changes meanwhile, the copy may
    /// contain old and new values. Each number is either the old or the new one; the id, the label and each
    /// text may mix old and new bytes.
    ClientEntry(const ClientEntry& shared);
    ClientEntry& operator=(const ClientEntry&) = delete;

    /// Returns the label, in Mac OS Roman, up to its terminator, or all 64 characters if there is none. The
    /// result points into `label`.
    std::string_view labelText() const;

    ClientID id;
    char padding[3] = {};
    std::int32_t type = 0; // see `clientType`; 0 if the record is free
    char label[64] = {};
    std::uint32_t aux32 = 0; // only the host uses the `aux` fields
    std::uint16_t auxA16 = 0;
    std::uint16_t auxB16 = 0;
    float params[kParameters] = {}; // the index is the parameter's number
    std::array<SHMString, kStrings> strings;
};

static_assert(sizeof(ClientEntry) == 3376, "every slot behind the first would move");
static_assert(offsetof(ClientEntry, id) == 0);
static_assert(offsetof(ClientEntry, type) == 68);
static_assert(offsetof(ClientEntry, label) == 72);
static_assert(offsetof(ClientEntry, aux32) == 136);
static_assert(offsetof(ClientEntry, auxA16) == 140);
static_assert(offsetof(ClientEntry, auxB16) == 142);
static_assert(offsetof(ClientEntry, params) == 144);
static_assert(offsetof(ClientEntry, strings) == 656);

} // namespace LIPC
