// Reads and writes small text files. Every failure is reported to the caller. Any thread; all functions
// block.
#pragma once

#include <cstddef>
#include <string>

namespace Kest::Settings {

struct FileContent {
    int error = 0; // 0, or the system's error number; ENOENT if there is no such file
    std::string text;
};

/// Reads at most the first `limit` bytes of a regular file. On failure `error` is not 0 and `text` is empty.
FileContent readFile(const std::string& path, std::size_t limit);

/// Atomically replaces or creates the file at `path`, and waits until its text and its name are on the disk.
/// Writes the text to `temporaryOf(path)` first; if the process is killed, that file may remain. Returns
/// false with `errno` set on failure; the old file then remains. Exception: if only the wait for the name has
/// failed, the new file is at `path`.
bool replaceFile(const std::string& path, const std::string& text);
/// Returns the path of the temporary file that `replaceFile` uses.
std::string temporaryOf(const std::string& path);

/// Waits until the text of a file and its name in its folder are on the disk. Returns false with `errno` set
/// on failure.
bool flushWithFolder(const std::string& path);

/// Waits until the data of an open file is on the disk. Returns false with `errno` set on failure. Each
/// platform has its own implementation.
bool flushToDisk(int file);

} // namespace Kest::Settings
