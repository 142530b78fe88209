// Open files and their locks, as /proc tells of them.
#include "tools/kest_inspect/SystemLook.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <sys/stat.h>

namespace KestInspect {
namespace {

namespace fs = std::filesystem;

// The number that a folder of a process is called by; 0 for another entry.
pid_t processOf(const fs::path& folder)
{
    const auto name = folder.filename().string();
    pid_t process = 0;
    const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), process);
    return error == std::errc{} && end == name.data() + name.size() ? process : 0;
}

// Processes come and go, and those of others may not be looked into: what cannot be read is passed over.
template <typename Visit>
void forEachEntry(const fs::path& folder, const Visit& visit)
{
    std::error_code failure;
    const fs::directory_iterator end;
    for (fs::directory_iterator entry(folder, failure); !failure && entry != end; entry.increment(failure))
        visit(entry->path());
}

// A writing end does not, and neither does a descriptor that only stands for a path.
bool canRead(unsigned long flags) { return (flags & O_ACCMODE) != O_WRONLY && (flags & O_PATH) == 0; }

void addWhatIsKnown(const fs::path& descriptorInfo, Opener& opener)
{
    std::ifstream info(descriptorInfo);
    for (std::string line; std::getline(info, line);) {
        if (line.starts_with("flags:"))
            opener.reads |= canRead(std::strtoul(line.c_str() + 6, nullptr, 8));
        opener.holdsLock |= line.starts_with("lock:") && line.find("FLOCK") != std::string::npos;
    }
}

// By its file, as the name that the system keeps is cut after 15 characters.
std::string programOf(const fs::path& folder)
{
    std::error_code failure;
    const auto file = fs::read_symlink(folder / "exe", failure);
    return failure ? "unknown" : file.filename().string();
}

template <typename IsWanted>
std::optional<Opener> openerAmong(const fs::path& folder, const IsWanted& isWanted)
{
    Opener opener{processOf(folder), "", false, false};
    if (opener.process == 0)
        return std::nullopt;
    bool isOpen = false;
    forEachEntry(folder / "fd", [&](const fs::path& descriptor) {
        if (!isWanted(descriptor))
            return;
        isOpen = true;
        addWhatIsKnown(folder / "fdinfo" / descriptor.filename(), opener);
    });
    if (!isOpen)
        return std::nullopt;
    opener.program = programOf(folder);
    return opener;
}

/// `isWanted` decides by the entry of a descriptor in /proc.
template <typename IsWanted>
std::vector<Opener> openersWith(const IsWanted& isWanted)
{
    std::vector<Opener> openers;
    forEachEntry("/proc", [&](const fs::path& folder) {
        if (auto opener = openerAmong(folder, isWanted))
            openers.push_back(std::move(*opener));
    });
    return openers;
}

} // namespace

std::vector<Opener> openersOf(const std::string& path)
{
    struct stat file {};
    if (lstat(path.c_str(), &file) != 0)
        return {};
    return openersWith([&](const fs::path& descriptor) {
        struct stat status {};
        return stat(descriptor.c_str(), &status) == 0 && status.st_dev == file.st_dev &&
               status.st_ino == file.st_ino;
    });
}

std::vector<Opener> openersOfRemoved(const std::string& path)
{
    return openersWith([removed = path + " (deleted)"](const fs::path& descriptor) {
        std::error_code failure;
        return fs::read_symlink(descriptor, failure) == removed;
    });
}

bool isLocked(const std::string& path) { return std::ranges::any_of(openersOf(path), &Opener::holdsLock); }

} // namespace KestInspect
