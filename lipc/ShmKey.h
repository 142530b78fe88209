// The System V key of a named segment, which the system derives from the device and inode of a key file.
#pragma once

#include <string>
#include <sys/types.h>

namespace LIPC {

/// Returns the path of the key file of the segment `name`. A key file is normally empty.
std::string keyFilePath(const char* name);

/// Returns the key of the segment `name`; -1, with a line in the log, on failure. A symbolic link at the path
/// is a failure. Creates the key file if it is missing. Always empties it. If its times are more than an hour
/// old, sets them to now. A key file that this user may not write stays unchanged. Any thread.
key_t shmKey(const char* name);

/// Returns the key of the segment `name` without creating or changing the key file. Returns -1, without a
/// line in the log, if the key file is missing, is a symbolic link or cannot be examined. Any thread.
key_t existingShmKey(const char* name);

} // namespace LIPC
