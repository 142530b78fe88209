// Files and folders as descriptors and facts, never through a link; each system reports them in its own way.
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
    std::uint64_t mount = 0; // two files are in the same mount when this is equal
    mode_t mode = 0;
    uid_t owner = 0;
    // Nanoseconds since 1970.
    std::int64_t modified = 0;
    std::int64_t changed = 0;            // modified, renamed, or with other permissions
    std::optional<std::int64_t> created; // where the file system keeps it
};

/// Returns what is known of an entry of an open folder, of a link itself; of the folder when `name` is empty.
/// nullopt with `errno` set. Any thread.
std::optional<FileFacts> examine(int folder, const std::string& name = {});

/// Opens a folder in an open folder, or by an absolute path with AT_FDCWD, to reach what is in it. Its last
/// component must not be a link. None, with `errno` set, when that fails. Any thread.
Settings::Descriptor openFolder(int parent, const std::string& name);

/// Returns the absolute path of an open folder, without links; empty when the system does not report it.
/// Any thread.
std::string pathOf(const Settings::Descriptor& folder);

/// Returns the absolute paths of all mount points, without links; nullopt when the system does not report
/// them. Any thread.
std::optional<std::vector<std::string>> mountPoints();

} // namespace Kest::App
