// The folders that are never deleted, even if an encoder reports them as its output.
#pragma once

#include <limits>
#include <string>
#include <vector>

namespace Kest::App {

/// Protects the folder `path`, each folder that contains it, and its subfolders to the depth `levels`.
/// Protects nothing if the folder does not exist or cannot be accessed.
struct ProtectedFolder {
    static constexpr int kWholeTree = std::numeric_limits<int>::max();

    std::string path;         // absolute; may contain links
    int levels = 0;           // 0: no subfolders; 1: direct subfolders; `kWholeTree`: all
    bool hiddenTrees = false; // also protects direct subfolders with a leading dot, with all their contents
};

/// Returns the folders to protect on this system, for this user. They include the program's folder, and
/// `settingsFolder` with its whole tree. Any thread.
std::vector<ProtectedFolder> protectedFolders(const std::string& settingsFolder);

} // namespace Kest::App
