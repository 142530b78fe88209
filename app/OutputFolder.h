// Guards the one destructive thing that the agent does: removing an aborted encoding's output.
#pragma once

#include <string>
#include <vector>

namespace Kest::App {

/// The folder that an abort may remove, or why it may not.
struct FolderToRemove {
    std::string folder;
    std::string refusal; // empty when the folder may be removed
};

/// Looks at the folder that an output file is in. It must be absolute and free of single quotes (the shell
/// would read another path), and neither be nor contain one of the home folders, through links or not.
FolderToRemove folderToRemove(const std::string& outputPath, const std::vector<std::string>& homeFolders);

/// The home folders of the user: what the environment says and what the password entry says.
std::vector<std::string> homeFolders();

/// The shell command that ends an encoder at once. Empty for processes 0 and 1, groups (negative numbers) and
/// the agent itself, which are never killed.
std::string killCommand(int pid);

/// The shell command that removes a folder that `folderToRemove` has let pass.
std::string removeCommand(const std::string& folder);

} // namespace Kest::App
