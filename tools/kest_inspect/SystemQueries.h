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

/// Returns the processes that have an open file that was removed from `path`. The restrictions of
/// `processesHolding` apply.
std::vector<FileHolder> processesHoldingRemoved(const std::string& path);

/// Returns whether a process has locked the file at `path`. Does not lock the file. May return false if the
/// process belongs to another user.
bool isLocked(const std::string& path);

/// Finds a session segment without its key file, which may have been removed. Considers only segments with a
/// key other than 0 whose size is at least `bytes` and less than `bytes` plus one page. Returns the id of the
/// process that created the first such segment; ignores segments whose creator has ended. Returns nullopt if
/// no segment is found or the system does not list segments.
std::optional<pid_t> creatorOfSegment(std::size_t bytes);

/// Checks whether a tray can display the menu. Takes at most two seconds. Returns nullopt on systems that
/// always have a menu bar.
std::optional<Finding> checkTray();

} // namespace KestInspect
