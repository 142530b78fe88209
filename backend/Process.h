// Processes as the system knows them: which one has a number now, and ending exactly that one.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace Kest::Settings {

/// One process for the whole run of the system: a number is given again, a number with its start time is not.
struct ProcessIdentity {
    std::int32_t pid = 0;
    /// In the system's own unit: clock ticks since the boot on Linux, microseconds since 1970 on macOS. 0
    /// when no process had the number.
    std::uint64_t startTime = 0;

    bool operator==(const ProcessIdentity&) const = default;
};

/// Returns the identity of the process that has the number now. The start time is 0 when there is none, or
/// when the number is that of a thread. Any thread.
ProcessIdentity identifyProcess(std::int32_t pid);

/// Returns when a process started, in nanoseconds since 1970; nullopt for a start time of 0. The result may
/// be 10 ms early, the system's resolution, and moves with the clock when that is set. Any thread.
std::optional<std::int64_t> startedAt(const ProcessIdentity& process);

/// Returns whether the process has this file open, by the file's identity; false when that cannot be read.
/// Any thread.
bool hasOpen(const ProcessIdentity& process, const std::string& path);

/// Ends a process by SIGKILL and waits up to five seconds until it has ended. Ends only exactly this process,
/// only one of this user, and neither the agent nor an ancestor of it. Returns an empty text when the process
/// has ended, before or now; otherwise why it was not killed, or that it does not end. The number of a
/// thread without a start time is an error as well. Any thread; blocks.
std::string endProcess(const ProcessIdentity& process);

} // namespace Kest::Settings
