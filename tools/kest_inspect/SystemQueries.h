// Platform-specific queries. Each platform has its own implementation in a separate folder.
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
    bool holdsLock = false; // has locked the file with flock
};

/// Returns the processes that have the file at `path` open, without opening the file. Processes of other
/// users may be missing. Empty if the system does not list open files.
std::vector<FileHolder> processesHolding(const std::string& path);

/// Returns the processes that have a file open that was at `path` and was removed. The same restrictions as
/// for `processesHolding`.
std::vector<FileHolder> processesHoldingRemoved(const std::string& path);

/// Returns whether a process has locked the file at `path`. Does not lock the file.
bool isLocked(const std::string& path);

/// Finds a session segment whose key file was removed: a segment with any key, of `bytes` bytes or up to a
/// page more. Returns the id of the process that created it, if that process still runs. Returns nullopt if
/// there is no such segment or the system does not list segments.
std::optional<pid_t> creatorOfSegment(std::size_t bytes);

/// Checks whether a tray can display the menu, within two seconds. Returns nullopt on systems that always
/// have a menu bar.
std::optional<Finding> checkTray();

} // namespace KestInspect
