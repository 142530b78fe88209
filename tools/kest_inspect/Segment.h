// The system's data about a shared-memory segment, without its content.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <sys/types.h>

namespace KestInspect {

struct Segment {
    int id = -1;
    int error = 0; // the error number if the rest is unknown, otherwise 0
    std::size_t bytes = 0;
    unsigned mode = 0; // permission bits
    uid_t owner = 0;
    pid_t creator = 0; // 0 if it is in a process namespace that is not visible here
    unsigned long attached = 0;
    bool isWritable = false; // by this user
};

/// Returns nullopt if there is no segment of that name, or no key file for it.
std::optional<Segment> findSegment(const std::string& name);

/// Returns whether a process has ended; false for 0.
bool hasEnded(pid_t process);

/// Returns "root", or the number of a user without a name.
std::string userName(uid_t user);

} // namespace KestInspect
