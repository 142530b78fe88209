// The folders that are never deleted, even if an encoder reports them as its output.
#pragma once

#include <limits>
#include <string>
#include <vector>

namespace Kest::App {

/// Protects a folder, each folder that contains it, and its subfolders to the depth `levels`. A folder that
/// does not exist or cannot be accessed protects nothing.
struct ProtectedFolder {
    static constexpr int kWholeTree = std::numeric_limits<int>::max();

    std::string path;         // absolute; may contain links
    int levels = 0;           // 0: no subfolders; 1: its direct subfolders
    bool hiddenTrees = false; // also protects direct subfolders with a leading dot, with all their contents
};

/// Returns the protected folders of this system, of this user and of the agent. They include `settingsFolder`
/// with its whole tree. Any thread.
std::vector<ProtectedFolder> protectedFolders(const std::string& settingsFolder);

} // namespace Kest::App
