#include "app/ProtectedFolders.h"

#include <juce_core/juce_core.h>

#include <array>
#include <cstdlib>
#include <pwd.h>
#include <unistd.h>

namespace Kest::App {
namespace {

// Folders that contain general folders of the system or its administrator: homes, drives, programs.
constexpr std::array kWithChildren = {
    "/",    "/Applications", "/Library", "/Users",       "/Volumes", "/home",      "/media", "/mnt",
    "/opt", "/private",      "/run",     "/private/var", "/srv",     "/run/media", "/var",
};

constexpr std::array kSystemTrees = {
    "/System", "/bin",    "/boot",        "/dev",  "/etc",  "/lib", "/lib32",
    "/lib64",  "/libx32", "/private/etc", "/proc", "/sbin", "/sys", "/usr",
};

constexpr std::array kDrivesOfUsers = {"/media/", "/run/media/"}; // with a folder per user

struct User {
    std::string name;
    std::string home;
};

User currentUser()
{
    std::array<char, 16384> texts{};
    passwd entry{};
    passwd* found = nullptr;
    if (getpwuid_r(geteuid(), &entry, texts.data(), texts.size(), &found) != 0 || found == nullptr)
        return {};
    return {entry.pw_name, entry.pw_dir};
}

} // namespace

std::vector<ProtectedFolder> protectedFolders(const std::string& settingsFolder)
{
    constexpr int tree = ProtectedFolder::kWholeTree;
    constexpr std::size_t kOfUser = 8;
    std::vector<ProtectedFolder> folders;
    folders.reserve(kWithChildren.size() + kSystemTrees.size() + kOfUser);
    for (const auto* path : kWithChildren)
        folders.push_back({path, 1});
    for (const auto* path : kSystemTrees)
        folders.push_back({path, tree});
    const auto user = currentUser();
    if (!user.name.empty())
        for (const auto* drives : kDrivesOfUsers)
            folders.push_back({drives + user.name, 1});
    const char* home = std::getenv("HOME");
    for (const auto& path : {std::string(home == nullptr ? "" : home), user.home}) {
        if (path.empty())
            continue;
        folders.push_back({path, 1, true});
        folders.push_back({path + "/Library", tree});
    }
    folders.push_back({settingsFolder, tree});
    const auto program = juce::File::getSpecialLocation(juce::File::hostApplicationPath);
    folders.push_back({program.getParentDirectory().getFullPathName().toStdString()});
    return folders;
}

} // namespace Kest::App
