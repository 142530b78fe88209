// Files in a folder that every user may write, such as /tmp.
#pragma once

namespace LIPC {

/// Of files and segments: every user may read and write them.
constexpr int kModeWorldWritable = 0666;

/// Opens a regular file for writing, and creates it with `mode` when it is absent; its content stays as it
/// is. Returns the descriptor, or -1 with `errno` set: also for a link, for anything but a regular file
/// (EINVAL) and for a file with more than one hard link (EMLINK). Any thread.
int openSharedFile(const char* path, unsigned mode);

} // namespace LIPC
