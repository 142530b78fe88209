// Identifies processes beyond the reuse of their ids, and ends exactly one of them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace Kest::Settings {

/// Identifies a process until the system restarts: an id is used again, an id with its start time is not.
struct ProcessIdentity {
    std::int32_t pid = 0;
    /// In clock ticks since the boot on Linux, in microseconds since 1970 on macOS; 0 if no process had the
    /// id.
    std::uint64_t startTime = 0;

    bool operator==(const ProcessIdentity&) const = default;
};

/// Returns the identity of the process that has the id now. The start time is 0 if there is none, or if it is
/// the id of a thread. Any thread.
ProcessIdentity identifyProcess(std::int32_t pid);

/// Returns the start of a process in nanoseconds since 1970; nullopt for a start time of 0. The result is up
/// to 10 ms early, the system's resolution, and changes when the clock is set. Any thread.
std::optional<std::int64_t> startedAt(const ProcessIdentity& process);

/// Returns whether the process has this file open, compared by device and inode; false if the system does not
/// show it. Any thread.
bool hasOpen(const ProcessIdentity& process, const std::string& path);

/// Sends SIGKILL to exactly this process and waits up to five seconds until it has ended. Refuses a process
/// of another user, the agent and its ancestors, and the id of a thread. Returns an empty text if the process
/// has ended, before or now; otherwise the reason why it was not killed, or that it does not end. Any thread;
/// blocks.
std::string endProcess(const ProcessIdentity& process);

} // namespace Kest::Settings
