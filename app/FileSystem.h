// Functions for files and folders, implemented for each system. No function follows a symbolic link that is
// the last component of a path.
#pragma once

#include "backend/Descriptor.h"

#include <cstdint>
#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

namespace Kest::App {

struct FileIdentity {
    std::uint64_t device = 0;
    std::uint64_t number = 0; // inode number

    bool operator==(const FileIdentity&) const = default;
};

struct FileFacts {
    FileIdentity identity;
    std::uint64_t mount = 0; // equal for two files in the same mount
    mode_t mode = 0;
    uid_t owner = 0;
    // All times are in nanoseconds since 1970.
    std::int64_t modified = 0;
    std::int64_t changed = 0;            // last change of content or metadata
    std::optional<std::int64_t> created; // nullopt if the file system does not record it
};

/// Returns the facts about the entry `name` of the folder with the descriptor `folder`; if the entry is a
/// link, about the link. If `name` is empty, returns the facts about the folder itself. Returns nullopt and
/// sets `errno` on failure. Any thread.
std::optional<FileFacts> examine(int folder, const std::string& name = {});

/// Opens the folder `name` in the folder with the descriptor `parent`. If `parent` is AT_FDCWD, `name` must
/// be an absolute path. Through the result, the entries of the folder can be opened, but perhaps not listed.
/// Fails if `name` is a link. Returns an empty descriptor and sets `errno` on failure. Any thread.
Settings::Descriptor openFolder(int parent, const std::string& name);

/// Returns the absolute path of an open folder, without links; an empty text if the system does not report
/// it. Any thread.
std::string pathOf(const Settings::Descriptor& folder);

/// Returns the absolute paths of all mount points, without links; nullopt if the system does not report them.
/// Any thread.
std::optional<std::vector<std::string>> mountPoints();

} // namespace Kest::App
