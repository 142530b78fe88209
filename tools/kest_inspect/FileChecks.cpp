// Checks of the files that the agent reads and writes.
#include "backend/FileIo.h"
#include "backend/SettingsFileCheck.h"
#include "backend/SettingsLocation.h"
#include "tools/kest_inspect/Checks.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <unistd.h>

namespace KestInspect {
namespace {

namespace fs = std::filesystem;
using Kest::Settings::FileContent;

constexpr char kSettings[] = "settings file";
constexpr char kFacilities[] = "facilities";
constexpr char kLastUser[] = "last user";

FileContent read(const std::string& path)
{
    return Kest::Settings::readFile(path, Kest::Settings::kMaxSettingsBytes + 1);
}

bool isValid(const FileContent& file) { return file.error == 0 && Kest::Settings::isSettingsText(file.text); }

// Returns the folder, or its nearest existing parent, in which a missing one would be created.
fs::path nearestExistingFolder(fs::path folder)
{
    while (!statusOf(folder) && folder.has_relative_path())
        folder = folder.parent_path();
    return folder;
}

// Checks only the folder: a save replaces the settings file by a new one, so the file's own mode does not
// matter.
Check checkSaving(const std::string& path)
{
    const auto folder = nearestExistingFolder(fs::path(path).parent_path()).string();
    const auto cannotSave = [&](const std::string& what, const std::string& hint) {
        return error(kSettings, folder + what + ": settings cannot be saved", hint);
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
        return cannotSave(": " + std::string(std::strerror(errno)), "make it writable by this user");
    if (status.st_uid == geteuid())
        return cannotSave(" is not writable", "chmod u+rwx '" + folder + "'");
    return cannotSave(" belongs to " + userName(status.st_uid) + " and is not writable by " +
                          userName(geteuid()),
                      "use this user's own home folder (HOME), or let " + userName(status.st_uid) +
                          " make the folder writable");
}

Finding damagedSettings(const std::string& path)
{
    const bool hasBackup = isValid(read(path + ".last"));
    return error(kSettings, path + " is damaged",
                 std::string("restart the agent: it renames this file to .bad and uses ") +
                     (hasBackup ? "the backup" : "the defaults"));
}

} // namespace

Check checkSettings(const CheckContext& context)
{
    const auto path = Kest::Settings::settingsFileBehindLinks(context.paths.settingsFile());
    if (auto problem = checkSaving(path))
        return problem;
    const auto file = read(path);
    if (file.error == ENOENT || file.error == ENOTDIR)
        return ok(kSettings, path + " does not exist yet; the defaults are used");
    if (file.error != 0)
        return error(kSettings, path + ": " + std::strerror(file.error), "make it readable by this user");
    if (!isValid(file))
        return damagedSettings(path);
    if (statusOf(path + ".bad"))
        return warning(kSettings, path + " is valid; an earlier, damaged file is kept as .bad",
                       "check the .bad file, then remove it");
    return ok(kSettings, path + ", " + std::to_string(file.text.size()) + " bytes");
}

Check checkFacilities(const CheckContext& context)
{
    const auto& path = context.paths.facilitiesFolder;
    std::error_code failure;
    int count = 0;
    const fs::directory_iterator end;
    for (fs::directory_iterator entry(path, failure); !failure && entry != end; entry.increment(failure)) {
        std::error_code unknown;
        count += entry->is_directory(unknown) ? 1 : 0;
    }
    if (failure && failure != std::errc::no_such_file_or_directory)
        return error(kFacilities, path + ": " + failure.message(), "make the folder readable by this user");
    if (count == 0)
        return warning(kFacilities, "none in " + path,
                       "install the studio's facilities there, one folder for each");
    return ok(kFacilities, std::to_string(count) + " in " + path);
}

Check checkLastUser(const CheckContext& context)
{
    const auto& path = context.paths.lastUserFile;
    const auto status = statusOf(path);
    const bool hasFolder = statusOf(fs::path(path).parent_path()).has_value();
    if (!status)
        return ok(kLastUser,
                  hasFolder ? "none yet in " + path : "not recorded: there is no folder for " + path);
    if (!S_ISREG(status->st_mode) || status->st_nlink != 1)
        return error(kLastUser,
                     path + " is " + kindOf(*status) +
                         (S_ISREG(status->st_mode) ? " with more than one hard link" : ""),
                     "remove it; the agent refuses to write it");
    if (access(path.c_str(), W_OK) != 0)
        return warning(kLastUser, path + " is not writable by this user", "chmod 666 '" + path + "'");
    const auto text = read(path).text;
    return ok(kLastUser, text.substr(0, text.find('\n')) + " started the agent last, see " + path);
}

} // namespace KestInspect
