// What the system knows of a shared-memory segment, apart from what is in it.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <sys/types.h>

namespace KestInspect {

struct Segment {
    int id = -1;
    int error = 0; // 0, or the system's number of why the rest is not known
    std::size_t bytes = 0;
    unsigned mode = 0; // permission bits
    uid_t owner = 0;
    pid_t creator = 0; // 0 when it is in a process namespace that cannot be seen from here
    unsigned long attached = 0;
    bool isWritable = false; // by this user
};

/// Nothing when there is no segment of that name, which goes for one without a marker file too.
std::optional<Segment> findSegment(const std::string& name);

/// Whether a process has ended; 0 counts as one that has not.
bool hasEnded(pid_t process);

/// "root", or the number of a user who has no name.
std::string userName(uid_t user);

} // namespace KestInspect
