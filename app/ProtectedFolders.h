// The folders that are never deleted, whatever an encoder reports as its output.
#pragma once

#include <limits>
#include <string>
#include <vector>

namespace Kest::App {

/// Protects a folder, each folder that contains it, and its subfolders down to `levels`: 1 is its direct
/// children. A folder that does not exist protects nothing.
struct ProtectedFolder {
    static constexpr int kWholeTree = std::numeric_limits<int>::max();

    std::string path;
    int levels = 0;
    bool hiddenTrees = false; // also protects the trees of direct children with a leading dot
};

/// Returns the protected folders of this system and this user. Any thread.
std::vector<ProtectedFolder> protectedFolders(const std::string& settingsFolder);

} // namespace Kest::App
