// Queries about files and folders. No query follows a link at the end of a path. Each system has its own
// implementation.
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

/// Returns the facts about the entry `name` of an open folder, without following a link. If `name` is empty,
/// returns the facts about the folder itself. Returns nullopt and sets `errno` on failure. Any thread.
std::optional<FileFacts> examine(int folder, const std::string& name = {});

/// Opens the folder `name` inside the open folder `parent`, for access to its entries. If `parent` is
/// AT_FDCWD, `name` is an absolute path. Fails if the last component is a link. Returns an empty descriptor
/// and sets `errno` on failure. Any thread.
Settings::Descriptor openFolder(int parent, const std::string& name);

/// Returns the absolute path of an open folder, without links; an empty text if the system does not report
/// it. Any thread.
std::string pathOf(const Settings::Descriptor& folder);

/// Returns the absolute paths of all mount points, without links; nullopt if the system does not report them.
/// Any thread.
std::optional<std::vector<std::string>> mountPoints();

} // namespace Kest::App
