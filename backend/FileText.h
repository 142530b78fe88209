// Small text files, read and written so that nothing is taken for done that is not.
#pragma once

#include <cstddef>
#include <string>

namespace Kest::Settings {

struct FileText {
    int error = 0; // 0, or the system's number of what went wrong; ENOENT: there is no such file
    std::string text;
};

/// Reads no more than `limit` bytes, and only from a regular file. All or nothing.
FileText readFile(const std::string& path, std::size_t limit);

/// Replaces a file by one with this text, and waits until the new file and its name are on the disk. Returns
/// false when they may not be, with the reason in `errno`. The old file stays until the new one is complete;
/// until then the text is in `temporaryOf(path)`, which a process that dies leaves behind.
bool replaceFile(const std::string& path, const std::string& text);
std::string temporaryOf(const std::string& path);

/// Waits until a file and its name in its folder are on the disk; false when they may not be, with the reason
/// in `errno`.
bool flushWithFolder(const std::string& path);

/// Waits until what was written through an open file is on the disk. Differs between systems.
bool flushToDisk(int file);

} // namespace Kest::Settings
