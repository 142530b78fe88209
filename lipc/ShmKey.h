// Derives the System V key of a named segment from the device and inode of its key file.
#pragma once

#include <string>
#include <sys/types.h>

namespace LIPC {

/// Returns the path of the key file of the segment `name`. A key file is normally empty.
std::string keyFilePath(const char* name);

/// Returns the key of the segment `name`. If the key file is missing, creates it; otherwise empties it and,
/// if it was last modified more than an hour before the call, sets its times to now. If it exists but cannot
/// be opened for writing (for example, another user's), leaves it unchanged and returns its key. Returns -1
/// and logs a line if the key file is a symbolic link, or cannot be created or examined. Any thread.
key_t shmKey(const char* name);

/// Returns the key of the segment `name` without creating or changing the key file. Returns -1, without a
/// line in the log, if the key file is missing, is a symbolic link or cannot be examined. Any thread.
key_t existingShmKey(const char* name);

} // namespace LIPC
