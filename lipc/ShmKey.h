// The System V key of a named segment.
#pragma once

#include <string>
#include <sys/types.h>

namespace LIPC {

/// The empty file on whose identity the key of the segment `name` rests.
std::string markerPath(const char* name);

/// Returns the key of the segment called `name`, or -1 with one log line. Creates the marker file when it is
/// missing, empties it when it is not empty, and sets its times to now when they are more than an hour old; a
/// file that this user may not write stays as it is. A link in its place is never followed. Any thread.
key_t shmKey(const char* name);

/// The same key for one who only looks: the marker file stays as it is, missing too, and nothing is logged.
/// -1 when there is none, or a link in its place.
key_t existingShmKey(const char* name);

} // namespace LIPC
