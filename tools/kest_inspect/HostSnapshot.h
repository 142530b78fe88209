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
    int slot = 0; // 0 to 1023
    std::string id;
    std::int32_t type = 0;
    std::string label; // Mac OS Roman, any bytes

    bool operator==(const Client&) const = default;
};

/// The record "KestSettings".
struct AgentRecord {
    int slot = 0;
    std::array<float, LIPC::ClientEntry::kParameters> parameters{};
    std::array<std::string, LIPC::ClientEntry::kStrings>
        texts; // UTF-8 if the agent wrote them, else any bytes
};

struct Session {
    int segment = -1;            // the segment's id, which changes when the host restarts
    std::vector<Client> clients; // in slot order: all with a type, and the agent's record
    std::optional<AgentRecord> agent;
    std::string defaultBus; // a client's id
};

struct HostSnapshot {
    std::optional<std::int32_t> versionWord; // bits of the host; none without a version segment
    std::optional<Session> session;          // none without a session segment that is long enough
};

/// Reads the host's segments. Creates no key file, writes nothing and keeps nothing attached. The host writes
/// names without a lock, so it reads up to five times, until two readings in a row have the same names.
HostSnapshot readHost(const Kest::Settings::SystemPaths& paths);

/// Returns the label of the client with this id; empty if there is none.
std::string labelOf(const Session& session, const std::string& id);

} // namespace KestInspect
