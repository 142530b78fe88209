// The system's data about a shared-memory segment, without the content of the segment.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <sys/types.h>

namespace KestInspect {

struct Segment {
    int id = -1;
    int error = 0; // `errno` if the fields below could not be read; otherwise 0
    std::size_t bytes = 0;
    unsigned mode = 0; // permission bits
    uid_t owner = 0;
    pid_t creator = 0;          // process id; 0 if the creator's process namespace is not visible
    unsigned long attached = 0; // number of attachments
    bool isWritable = false;    // this user may read and write the segment
};

/// Returns the data of the segment `name`; nullopt if there is no such segment or its key file yields no key.
std::optional<Segment> findSegment(const std::string& name);

/// Returns whether no process has the id `process`. Returns false for 0.
bool hasEnded(pid_t process);

/// Returns the login name of a user, or the user's number if there is no name.
std::string userName(uid_t user);

} // namespace KestInspect
