// The System V key of a named segment.
#pragma once

#include <string>
#include <sys/types.h>

namespace LIPC {

/// Returns the path of the key file of the segment `name`: an empty file whose identity gives the key.
std::string keyFilePath(const char* name);

/// Returns the key of the segment `name`, or -1 with one log line. Creates the key file if it is missing,
/// empties it if it is not empty, and sets its times to now if they are more than an hour old; a file that
/// this user may not write is not changed. Does not follow a link. Any thread.
key_t shmKey(const char* name);

/// Returns the same key without changing or creating the key file, and logs nothing; -1 if the file is
/// missing or is a link.
key_t existingShmKey(const char* name);

} // namespace LIPC
