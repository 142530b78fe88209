// Open files and their locks, from /proc.
#include "tools/kest_inspect/SystemQueries.h"

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

// Returns the process id that is the folder's name; 0 for another entry.
pid_t processOf(const fs::path& folder)
{
    const auto name = folder.filename().string();
    pid_t process = 0;
    const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), process);
    return error == std::errc{} && end == name.data() + name.size() ? process : 0;
}

// Skips what cannot be read: processes end, and those of other users may be unreadable.
template <typename Visit>
void forEachEntry(const fs::path& folder, const Visit& visit)
{
    std::error_code failure;
    const fs::directory_iterator end;
    for (fs::directory_iterator entry(folder, failure); !failure && entry != end; entry.increment(failure))
        visit(entry->path());
}

// Returns false for write-only descriptors and for those that only refer to a path.
bool canRead(unsigned long flags) { return (flags & O_ACCMODE) != O_WRONLY && (flags & O_PATH) == 0; }

void addDescriptorInfo(const fs::path& descriptorInfo, FileHolder& holder)
{
    std::ifstream info(descriptorInfo);
    for (std::string line; std::getline(info, line);) {
        if (line.starts_with("flags:"))
            holder.reads |= canRead(std::strtoul(line.c_str() + 6, nullptr, 8));
        holder.holdsLock |= line.starts_with("lock:") && line.find("FLOCK") != std::string::npos;
    }
}

// Uses the program's file, because the system cuts the process's name after 15 characters.
std::string programOf(const fs::path& folder)
{
    std::error_code failure;
    const auto file = fs::read_symlink(folder / "exe", failure);
    return failure ? "unknown" : file.filename().string();
}

template <typename IsWanted>
std::optional<FileHolder> holderIn(const fs::path& folder, const IsWanted& isWanted)
{
    FileHolder holder{processOf(folder), "", false, false};
    if (holder.process == 0)
        return std::nullopt;
    bool isOpen = false;
    forEachEntry(folder / "fd", [&](const fs::path& descriptor) {
        if (!isWanted(descriptor))
            return;
        isOpen = true;
        addDescriptorInfo(folder / "fdinfo" / descriptor.filename(), holder);
    });
    if (!isOpen)
        return std::nullopt;
    holder.program = programOf(folder);
    return holder;
}

/// `isWanted` is called with the path of a descriptor in /proc.
template <typename IsWanted>
std::vector<FileHolder> processesWithDescriptor(const IsWanted& isWanted)
{
    std::vector<FileHolder> holders;
    forEachEntry("/proc", [&](const fs::path& folder) {
        if (auto holder = holderIn(folder, isWanted))
            holders.push_back(std::move(*holder));
    });
    return holders;
}

} // namespace

std::vector<FileHolder> processesHolding(const std::string& path)
{
    struct stat file {};
    if (lstat(path.c_str(), &file) != 0)
        return {};
    return processesWithDescriptor([&](const fs::path& descriptor) {
        struct stat status {};
        return stat(descriptor.c_str(), &status) == 0 && status.st_dev == file.st_dev &&
               status.st_ino == file.st_ino;
    });
}

std::vector<FileHolder> processesHoldingRemoved(const std::string& path)
{
    return processesWithDescriptor([removed = path + " (deleted)"](const fs::path& descriptor) {
        std::error_code failure;
        return fs::read_symlink(descriptor, failure) == removed;
    });
}

bool isLocked(const std::string& path)
{
    return std::ranges::any_of(processesHolding(path), &FileHolder::holdsLock);
}

} // namespace KestInspect
