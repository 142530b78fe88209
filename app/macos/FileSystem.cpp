#include "app/FileSystem.h"

#include <array>
#include <cstdlib>
#include <fcntl.h>
#include <sys/mount.h>
#include <sys/param.h>
#include <sys/stat.h>

namespace Kest::App {
namespace {

#ifdef O_SEARCH // since macOS 12
constexpr int kSearchAccess = O_SEARCH;
#else
constexpr int kSearchAccess = O_RDONLY;
#endif

std::int64_t nanoseconds(const timespec& time) { return time.tv_sec * 1'000'000'000LL + time.tv_nsec; }

} // namespace

std::optional<FileFacts> examine(int folder, const std::string& name)
{
    struct stat found {};
    if ((name.empty() ? fstat(folder, &found) : fstatat(folder, name.c_str(), &found, AT_SYMLINK_NOFOLLOW)) !=
        0)
        return std::nullopt;
    const auto device = static_cast<std::uint64_t>(found.st_dev);
    FileFacts facts{.identity = {device, found.st_ino},
                    .mount = device, // macOS has no bind mounts
                    .mode = found.st_mode,
                    .owner = found.st_uid,
                    .modified = nanoseconds(found.st_mtimespec),
                    .changed = nanoseconds(found.st_ctimespec),
                    .created = {}};
    if (found.st_birthtimespec.tv_sec > 0)
        facts.created = nanoseconds(found.st_birthtimespec);
    return facts;
}

Settings::Descriptor openFolder(int parent, const std::string& name)
{
    return Settings::Descriptor(
        openat(parent, name.c_str(), kSearchAccess | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
}

std::string pathOf(const Settings::Descriptor& folder)
{
    std::array<char, MAXPATHLEN> path{};
    return fcntl(folder.get(), F_GETPATH, path.data()) == 0 ? std::string(path.data()) : std::string();
}

std::optional<std::vector<std::string>> mountPoints()
{
    struct statfs* mounts = nullptr;
    const int count = getmntinfo_r_np(&mounts, MNT_NOWAIT);
    if (count <= 0)
        return std::nullopt;
    std::vector<std::string> points;
    for (int i = 0; i < count; ++i)
        points.emplace_back(mounts[i].f_mntonname);
    std::free(mounts);
    return points;
}

} // namespace Kest::App
