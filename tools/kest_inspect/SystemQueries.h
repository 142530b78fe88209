// Queries that each platform implements in its own folder: about open files, locks, segments and the tray.
#pragma once

#include "tools/kest_inspect/Finding.h"

#include <cstddef>
#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

namespace KestInspect {

/// A process that has a file open.
struct FileHolder {
    pid_t process = 0;
    std::string program;    // file name of the program; "unknown" if the system does not show it
    bool reads = false;     // has the file open for reading
    bool holdsLock = false; // has locked the file with `flock`
};

/// Returns the processes that have the file at `path` open. Does not open the file. Processes of other users
/// may be missing. Empty if the system does not list open files.
std::vector<FileHolder> processesHolding(const std::string& path);

/// Returns the processes that still have a file open that was removed from `path`. Incomplete or empty in the
/// same cases as `processesHolding`.
std::vector<FileHolder> processesHoldingRemoved(const std::string& path);

/// Returns whether a process has locked the file at `path`. Does not lock the file. A lock of another user's
/// process may not be found.
bool isLocked(const std::string& path);

/// Finds a session segment by its size, because its key file may have been removed. Considers only segments
/// whose key is not 0, whose creator is running, and whose size is at least `bytes` and less than `bytes`
/// plus one page. Returns the process id of the first such segment's creator; nullopt if there is none or the
/// system does not list segments.
std::optional<pid_t> creatorOfSegment(std::size_t bytes);

/// Checks whether a tray can display the agent's menu. Takes at most two seconds. Returns nullopt on systems
/// that always have a menu bar.
std::optional<Finding> checkTray();

} // namespace KestInspect
