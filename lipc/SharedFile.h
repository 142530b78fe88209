// Opens files in a folder that every user may write, such as /tmp.
#pragma once

namespace LIPC {

/// The mode of files, pipes and segments that every user may read and write.
constexpr int kModeWorldWritable = 0666;

/// Opens a regular file for writing, without changing its content. If the file is missing, creates it with
/// the permissions `mode` less the umask. Returns the descriptor, which the caller must close. On failure,
/// returns -1 and sets `errno`: ELOOP for a symbolic link, EMLINK for a file with several hard links, EINVAL
/// if a file could be opened but is not regular, otherwise the error of `open`. Any thread.
int openSharedFile(const char* path, unsigned mode);

} // namespace LIPC
