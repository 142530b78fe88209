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
    std::string id; // any bytes
    std::int32_t type = 0;
    std::string label; // Mac OS Roman, so any bytes are valid

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
    std::vector<Client> clients;      // in slot order: all records with a type, and the agent's record
    std::optional<AgentRecord> agent; // nullopt if there is no such record
    std::string defaultBus;           // the id of the default bus; empty if there is none
};

struct HostSnapshot {
    std::optional<std::int32_t> versionWord; // the host's word size in bits; nullopt without a segment
    std::optional<Session> session;          // nullopt if there is no segment or it is too small
};

/// Returns a copy of the content of the host's segments. Creates no key file and writes nothing. The host
/// writes names without a lock. So this function reads the session again until two successive readings
/// contain the same names and texts, at most five times in total. Returns the last reading. Blocks for a few
/// milliseconds.
HostSnapshot readHost(const Kest::Settings::SystemPaths& paths);

/// Returns the label of the first client with this id; empty if there is none, or if `id` is empty.
std::string labelOf(const Session& session, const std::string& id);

} // namespace KestInspect
