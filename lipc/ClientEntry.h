// One client's record in the shared session.
#pragma once

#include "lipc/ClientID.h"
#include "lipc/SHMString.h"

#include <array>
#include <cstdint>
#include <string_view>

namespace LIPC {

/// Returns the number that the host writes for a client type of four letters; the first letter is the most
/// significant byte.
constexpr std::int32_t clientType(const char (&letters)[5])
{
    std::uint32_t code = 0;
    for (int i = 0; i < 4; ++i)
        code = code << 8 | static_cast<unsigned char>(letters[i]);
    return static_cast<std::int32_t>(code);
}

constexpr std::int32_t kMixEngineType = clientType("KMIX");
constexpr std::int32_t kBusType = clientType("KBUS");

/// A record in the segment, written by the host, or a copy in the agent's memory. Parameter numbers are those
/// of `Kest::Settings::cParameterDefaults`.
struct ClientEntry {
    static constexpr int kParameters = 128;
    static constexpr int kStrings = 10;

    ClientEntry() = default;
    /// Copies a record that its owner may be changing: numbers are whole, texts end within their field, and
    /// values from before and after a change may be mixed.
    ClientEntry(const ClientEntry& shared);
    ClientEntry& operator=(const ClientEntry&) = delete;

    /// Returns the label up to its terminator, or all 64 characters. Valid for the life of this object.
    std::string_view labelText() const;

    ClientID id;
    char padding[3] = {};
    std::int32_t type = 0;
    char label[64] = {};
    std::uint32_t aux32 = 0;
    std::uint16_t auxA16 = 0;
    std::uint16_t auxB16 = 0;
    float params[kParameters] = {};
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
