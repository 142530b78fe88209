// What each system tells in a way of its own, a file a system.
#pragma once

#include "tools/kest_inspect/Finding.h"

#include <cstddef>
#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

namespace KestInspect {

/// A process that has a file open.
struct Opener {
    pid_t process = 0;
    std::string program;
    bool reads = false;     // through a descriptor that can read
    bool holdsLock = false; // as a whole file is locked
};

/// The processes that have the file at a path open, without opening it. Empty where the system does not tell;
/// those of other users may be missing.
std::vector<Opener> openersOf(const std::string& path);

/// The same for files that were at this path and are removed.
std::vector<Opener> openersOfRemoved(const std::string& path);

/// Whether a process holds the lock of a file, found out without taking it.
bool isLocked(const std::string& path);

/// A segment that is `bytes` bytes long, less than a page more at most, and has a key, whatever key that is:
/// its creator, if it lives. For a session whose marker file was removed. Nothing where the system does not
/// tell.
std::optional<pid_t> creatorOfSegment(std::size_t bytes);

/// Whether there is a tray to put the menu in; nothing on systems that always have a menu bar.
std::optional<Finding> checkTray();

} // namespace KestInspect
