// A copy of the content of the host's segments.
#pragma once

#include "backend/SystemPaths.h"
#include "lipc/ClientEntry.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace KestInspect {

struct Client {
    int slot = 0;   // 0 to 1023
    std::string id; // Mac OS Roman, so any bytes are valid
    std::int32_t type = 0;
    std::string label; // in Mac OS Roman too

    bool operator==(const Client&) const = default;
};

/// The content of the agent's record, whose id is "KestSettings".
struct AgentRecord {
    int slot = 0;
    std::array<float, LIPC::ClientEntry::kParameters> parameters{};
    // The agent writes UTF-8; another process may have written any bytes.
    std::array<std::string, LIPC::ClientEntry::kStrings> texts;
};

struct Session {
    int segment = -1;                 // the segment's identifier; differs after each start of the host
    std::vector<Client> clients;      // in slot order: records whose type is not 0, and the agent's record
    std::optional<AgentRecord> agent; // nullopt if there is no such record
    std::string defaultBus;           // the id of the default bus; empty if there is none
};

struct HostSnapshot {
    std::optional<std::int32_t> versionWord; // the host's word size in bits; nullopt if it cannot be read
    std::optional<Session> session;          // nullopt if the segment cannot be read
};

/// Returns a copy of the content of the host's segments. Creates no key file and writes nothing. Because the
/// host writes without a lock, this function reads the segments repeatedly, until two successive readings
/// contain the same ids, labels and texts, but at most five times. Returns the last reading. Blocks for a few
/// milliseconds.
HostSnapshot readHost(const Kest::Settings::SystemPaths& paths);

/// Returns the label of the first client with this id, in Mac OS Roman; empty if there is none, or if `id` is
/// empty.
std::string labelOf(const Session& session, const std::string& id);

} // namespace KestInspect
