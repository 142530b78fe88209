// Files in a folder that every user may write, such as /tmp.
#pragma once

namespace LIPC {

/// The mode of files and segments that every user may read and write.
constexpr int kModeWorldWritable = 0666;

/// Opens a regular file for writing without changing its content, and creates it with `mode` if it is absent.
/// Returns the descriptor, or -1 with `errno` set; EINVAL for a file that is not regular, EMLINK for one with
/// more than one hard link. Does not follow a link. Any thread.
int openSharedFile(const char* path, unsigned mode);

} // namespace LIPC
