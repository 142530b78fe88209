// Checks of the files that the agent reads and writes.
#include "backend/FileText.h"
#include "backend/SettingsFileCheck.h"
#include "backend/SettingsPlace.h"
#include "tools/kest_inspect/Checks.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <unistd.h>

namespace KestInspect {
namespace {

namespace fs = std::filesystem;
using Kest::Settings::FileText;

constexpr char kSettings[] = "settings file";
constexpr char kFacilities[] = "facilities";
constexpr char kLastUser[] = "last user";

FileText read(const std::string& path)
{
    return Kest::Settings::readFile(path, Kest::Settings::kLongestSettings + 1);
}

bool isWhole(const FileText& file) { return file.error == 0 && Kest::Settings::isSettingsText(file.text); }

// Returns the folder, or its nearest existing parent, in which a missing one would be created.
fs::path lastExisting(fs::path folder)
{
    while (!statusOf(folder) && folder.has_relative_path())
        folder = folder.parent_path();
    return folder;
}

// Checks only the folder: a save replaces the settings file by a new one, so the file's own mode does not
// matter.
Check checkSaving(const std::string& path)
{
    const auto folder = lastExisting(fs::path(path).parent_path()).string();
    const auto cannotSave = [&](const std::string& what, const std::string& remedy) {
        return wrong(kSettings, folder + what + ": no choice can be saved", remedy);
    };
    struct stat status {};
    if (stat(folder.c_str(), &status) != 0 || !S_ISDIR(status.st_mode))
        return cannotSave(" is " + kindOf(*statusOf(folder)) + ", not a folder", "rename or remove it");
    if (faccessat(AT_FDCWD, folder.c_str(), W_OK | X_OK, AT_EACCESS) == 0)
        return std::nullopt;
    if (errno == EROFS)
        return cannotSave(" is on a read-only file system",
                          "make it writable, or use another home folder (HOME)");
    if (errno != EACCES)
        return cannotSave(": " + std::string(std::strerror(errno)), "let this user write it");
    if (status.st_uid == geteuid())
        return cannotSave(" is not writable", "chmod u+rwx '" + folder + "'");
    return cannotSave(" belongs to " + userName(status.st_uid) + " and is not writable by " +
                          userName(geteuid()),
                      "use this user's own home folder (HOME), or let " + userName(status.st_uid) +
                          " make the folder writable");
}

Finding damagedSettings(const std::string& path)
{
    const bool hasCopy = isWhole(read(path + ".last"));
    return wrong(kSettings, path + " is damaged",
                 std::string("start the agent anew: it sets this file aside as .bad and goes on with ") +
                     (hasCopy ? "its last good copy" : "the defaults"));
}

} // namespace

Check checkSettings(const Surroundings& here)
{
    const auto path = Kest::Settings::settingsFileBehindLinks(here.paths.settingsFile());
    if (auto problem = checkSaving(path))
        return problem;
    const auto file = read(path);
    if (file.error == ENOENT || file.error == ENOTDIR)
        return ok(kSettings, "none yet, the defaults hold: " + path);
    if (file.error != 0)
        return wrong(kSettings, path + ": " + std::strerror(file.error), "let this user read it");
    if (!isWhole(file))
        return damagedSettings(path);
    if (statusOf(path + ".bad"))
        return note(kSettings, path + " is well; a damaged one lies beside it as .bad",
                    "remove that once it has been looked at");
    return ok(kSettings, path + ", " + std::to_string(file.text.size()) + " bytes");
}

Check checkFacilities(const Surroundings& here)
{
    const auto& path = here.paths.facilitiesFolder;
    std::error_code failure;
    int count = 0;
    const fs::directory_iterator end;
    for (fs::directory_iterator entry(path, failure); !failure && entry != end; entry.increment(failure)) {
        std::error_code unknown;
        count += entry->is_directory(unknown) ? 1 : 0;
    }
    if (failure && failure != std::errc::no_such_file_or_directory)
        return wrong(kFacilities, path + ": " + failure.message(), "let this user read the folder");
    if (count == 0)
        return note(kFacilities, "none in " + path, "install the studio's rooms");
    return ok(kFacilities, std::to_string(count) + " in " + path);
}

Check checkLastUser(const Surroundings& here)
{
    const auto& path = here.paths.lastUserMarker;
    const auto status = statusOf(path);
    const bool hasFolder = statusOf(fs::path(path).parent_path()).has_value();
    if (!status)
        return ok(kLastUser, hasFolder ? "none yet" : "not kept: there is no folder for " + path);
    if (!S_ISREG(status->st_mode) || status->st_nlink != 1)
        return wrong(kLastUser,
                     path + " is " + kindOf(*status) + (S_ISREG(status->st_mode) ? " of two names" : ""),
                     "remove it: the agent writes no such thing");
    if (access(path.c_str(), W_OK) != 0)
        return note(kLastUser, path + " is not for this user to write", "chmod 666 it");
    const auto text = read(path).text;
    return ok(kLastUser, text.substr(0, text.find('\n')));
}

} // namespace KestInspect
