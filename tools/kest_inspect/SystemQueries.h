// Platform-specific queries, implemented in one folder for each platform.
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
    std::string program;
    bool reads = false;     // has a descriptor that can read
    bool holdsLock = false; // has locked the whole file
};

/// Returns the processes that have the file at a path open, without opening it. Processes of other users may
/// be missing. Empty if the system does not list open files.
std::vector<FileHolder> processesHolding(const std::string& path);

/// Returns the same for removed files that were at this path.
std::vector<FileHolder> processesHoldingRemoved(const std::string& path);

/// Returns whether a process holds the lock of a file, without taking the lock.
bool isLocked(const std::string& path);

/// Returns the live creator of a segment with a key, whatever key that is, and a size from `bytes` to less
/// than a page more; nullopt if there is none or the system does not list segments. For a session whose key
/// file was removed.
std::optional<pid_t> creatorOfSegment(std::size_t bytes);

/// Checks whether there is a tray for the menu; nullopt on systems that always have a menu bar.
std::optional<Finding> checkTray();

} // namespace KestInspect
