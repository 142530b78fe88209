#include "app/OutputFolder.h"

#include <juce_core/juce_core.h>

#include <algorithm>
#include <filesystem>
#include <pwd.h>
#include <unistd.h>

namespace Kest::App {
namespace {

namespace fs = std::filesystem;

// Without links and dots, as far as the path exists. Nothing when the file system cannot tell.
fs::path resolved(const std::string& path)
{
    std::error_code failure;
    auto result = fs::weakly_canonical(path, failure);
    if (failure)
        return {};
    return result.has_filename() ? result : result.parent_path(); // no slash at the end
}

// By name, and by what the names lead to: a bind mount is another name that no link shows.
bool isOrContains(const fs::path& folder, const fs::path& home)
{
    if (std::ranges::mismatch(folder, home).in1 == folder.end())
        return true;
    std::error_code absent;
    for (auto above = home; above != above.parent_path(); above = above.parent_path())
        if (fs::equivalent(folder, above, absent))
            return true;
    return false;
}

} // namespace

FolderToRemove folderToRemove(const std::string& outputPath, const std::vector<std::string>& homeFolders)
{
    const auto slash = outputPath.rfind('/');
    if (slash == std::string::npos)
        return {{}, "the output has no folder"};
    const auto folder = outputPath.substr(0, slash);
    if (!folder.starts_with('/'))
        return {{}, "its folder is not absolute"};
    if (folder.find('\'') != std::string::npos)
        return {{}, "its folder has a quote in its name"};
    const auto real = resolved(folder);
    if (real.empty())
        return {{}, "its folder cannot be resolved"};
    for (const auto& home : homeFolders)
        if (isOrContains(real, resolved(home)))
            return {{}, "its folder is or contains the home folder"};
    return {folder, {}};
}

std::vector<std::string> homeFolders()
{
    const auto home = juce::File::getSpecialLocation(juce::File::userHomeDirectory);
    std::vector<std::string> folders{home.getFullPathName().toStdString()};
    if (const passwd* user = getpwuid(geteuid()))
        folders.emplace_back(user->pw_dir);
    return folders;
}

std::string killCommand(int pid)
{
    return pid > 1 && pid != getpid() ? "kill -9 " + std::to_string(pid) : std::string();
}

std::string removeCommand(const std::string& folder) { return "rm -Rf '" + folder + "'"; }

} // namespace Kest::App
