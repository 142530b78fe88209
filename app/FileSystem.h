// Queries about files and folders that do not follow links. Each system has its own implementation.
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
    std::uint64_t number = 0; // of the inode

    bool operator==(const FileIdentity&) const = default;
};

struct FileFacts {
    FileIdentity identity;
    std::uint64_t mount = 0; // equal for two files in the same mount
    mode_t mode = 0;
    uid_t owner = 0;
    // Nanoseconds since 1970.
    std::int64_t modified = 0;
    std::int64_t changed = 0;            // last change of content, name or permissions
    std::optional<std::int64_t> created; // if the file system records it
};

/// Returns the facts about an entry of an open folder, without following a link; about the folder itself if
/// `name` is empty. nullopt, with `errno` set, on failure. Any thread.
std::optional<FileFacts> examine(int folder, const std::string& name = {});

/// Opens a folder inside an open folder, or by an absolute path with AT_FDCWD, for access to its entries. The
/// last component must not be a link. Empty, with `errno` set, on failure. Any thread.
Settings::Descriptor openFolder(int parent, const std::string& name);

/// Returns the absolute path of an open folder, without links; empty if the system reports none. Any thread.
std::string pathOf(const Settings::Descriptor& folder);

/// Returns the absolute paths of all mount points, without links; nullopt if the system does not report them.
/// Any thread.
std::optional<std::vector<std::string>> mountPoints();

} // namespace Kest::App
