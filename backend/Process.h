// Identifies processes, although the system reuses their ids, and kills a process.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace Kest::Settings {

/// Identifies a process until the system restarts. Its id may be reused, but not with the same start time.
struct ProcessIdentity {
    std::int32_t pid = 0;
    /// In clock ticks since the boot on Linux, in microseconds since 1970 on macOS; 0 if unknown or if no
    /// process had the id.
    std::uint64_t startTime = 0;

    bool operator==(const ProcessIdentity&) const = default;
};

/// Returns the identity of the process that has this id now. The start time is 0 if no process has the id, if
/// a thread has the id, or if the system does not report the start time. Any thread.
ProcessIdentity identifyProcess(std::int32_t pid);

/// Returns when a process was started, in nanoseconds since 1970; nullopt if `process.startTime` is 0. On
/// Linux the result may be up to 10 ms early, and changes if the system clock is set. Any thread.
std::optional<std::int64_t> startedAt(const ProcessIdentity& process);

/// Returns whether the process has the file at `path` open. Compares device and inode, and does not follow a
/// link at `path`. Returns false if the process has ended or the system does not show its open files. Any
/// thread.
bool hasOpen(const ProcessIdentity& process, const std::string& path);

/// Sends SIGKILL to exactly this process and waits for at most five seconds until it has ended. Does not kill
/// the calling process, an ancestor of the calling process, or a process of another user.
/// Returns an empty text if the process has ended, also if it had ended before the call. Otherwise returns
/// one line that says why the process was not killed, or that it has not ended yet. Any thread; blocks.
std::string endProcess(const ProcessIdentity& process);

} // namespace Kest::Settings
