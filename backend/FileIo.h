// Reads and writes small text files. Any thread; all functions block.
#pragma once

#include <cstddef>
#include <string>

namespace Kest::Settings {

struct FileContent {
    int error = 0; // 0, or the system's error number; ENOENT if there is no such file
    std::string text;
};

/// Reads at most the first `limit` bytes of a regular file; any other file is a failure. On failure `error`
/// is not 0 and `text` is empty.
FileContent readFile(const std::string& path, std::size_t limit);

/// Writes `text` to the file `temporaryOf(path)` and waits until it is on the disk. Then renames this file to
/// `path`, and waits until the new name is on the disk. So the file at `path` always has either its old or
/// its new text. If the process is killed, the temporary file may remain. Returns false with `errno` set on
/// failure. If only the wait for the name has failed, the new file is at `path`; after any other failure, the
/// old file is unchanged.
bool replaceFile(const std::string& path, const std::string& text);
/// Returns the path of the temporary file that `replaceFile` uses.
std::string temporaryOf(const std::string& path);

/// Waits until the text of a file and its name in its folder are on the disk. Returns false with `errno` set
/// on failure.
bool flushWithFolder(const std::string& path);

/// Waits until the data of an open file is on the disk. `file` is a descriptor. Returns false with `errno`
/// set on failure. Each platform has its own implementation.
bool flushToDisk(int file);

} // namespace Kest::Settings
