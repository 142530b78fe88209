// Reads and writes small text files and reports every failure.
#pragma once

#include <cstddef>
#include <string>

namespace Kest::Settings {

struct FileContent {
    int error = 0; // 0, or the system's error number; ENOENT if there is no such file
    std::string text;
};

/// Reads at most `limit` bytes of a regular file. Returns no text on an error.
FileContent readFile(const std::string& path, std::size_t limit);

/// Replaces a file atomically by one with this text, and waits until the file and its name are on the disk.
/// Returns false with `errno` set on failure. The new text is first written to `temporaryOf(path)`; a process
/// that is killed leaves that file.
bool replaceFile(const std::string& path, const std::string& text);
std::string temporaryOf(const std::string& path);

/// Waits until a file and its name in its folder are on the disk. Returns false with `errno` set on failure.
bool flushWithFolder(const std::string& path);

/// Waits until the data of an open file is on the disk. Each system has its own implementation.
bool flushToDisk(int file);

} // namespace Kest::Settings
