// Open files and their locks, as /proc tells of them.
#include "tools/kest_inspect/SystemLook.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sys/stat.h>

namespace KestInspect {
namespace {

namespace fs = std::filesystem;

constexpr unsigned long kAccessMode = 3; // of the flags: 0 reads, 1 writes, 2 does both

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

void addWhatIsKnown(const fs::path& descriptorInfo, Opener& opener)
{
    std::ifstream info(descriptorInfo);
    for (std::string line; std::getline(info, line);) {
        if (line.starts_with("flags:"))
            opener.reads |= (std::strtoul(line.c_str() + 6, nullptr, 8) & kAccessMode) != 1;
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

std::optional<Opener> openerAmong(const fs::path& folder, const struct stat& file)
{
    Opener opener{processOf(folder), "", false, false};
    if (opener.process == 0)
        return std::nullopt;
    bool isOpen = false;
    forEachEntry(folder / "fd", [&](const fs::path& descriptor) {
        struct stat status {};
        if (stat(descriptor.c_str(), &status) != 0 || status.st_dev != file.st_dev ||
            status.st_ino != file.st_ino)
            return;
        isOpen = true;
        addWhatIsKnown(folder / "fdinfo" / descriptor.filename(), opener);
    });
    if (!isOpen)
        return std::nullopt;
    opener.program = programOf(folder);
    return opener;
}

} // namespace

std::vector<Opener> openersOf(const std::string& path)
{
    std::vector<Opener> openers;
    struct stat file {};
    if (lstat(path.c_str(), &file) != 0)
        return openers;
    forEachEntry("/proc", [&](const fs::path& folder) {
        if (auto opener = openerAmong(folder, file))
            openers.push_back(std::move(*opener));
    });
    return openers;
}

bool isLocked(const std::string& path) { return std::ranges::any_of(openersOf(path), &Opener::holdsLock); }

} // namespace KestInspect
