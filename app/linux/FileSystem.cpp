#include "app/FileSystem.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <climits>
#include <fcntl.h>
#include <fstream>
#include <sstream>
#include <sys/stat.h>

namespace Kest::App {
namespace {

std::int64_t nanoseconds(const statx_timestamp& time) { return time.tv_sec * 1'000'000'000 + time.tv_nsec; }

// Decodes blanks, line breaks and backslashes: the table writes a backslash and three octal digits.
std::string unescaped(const std::string& text)
{
    constexpr std::size_t kDigits = 3;
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        char byte = text[i];
        if (byte == '\\') {
            int code = 0;
            const char* digits = text.data() + i + 1;
            std::from_chars(digits, digits + std::min(kDigits, text.size() - i - 1), code, 8);
            byte = static_cast<char>(code);
            i += kDigits;
        }
        result += byte;
    }
    return result;
}

} // namespace

std::optional<FileFacts> examine(int folder, const std::string& name)
{
    struct statx found {};
    if (statx(folder, name.c_str(), AT_EMPTY_PATH | AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT,
              STATX_BASIC_STATS | STATX_BTIME | STATX_MNT_ID, &found) != 0)
        return std::nullopt;
    const auto device = std::uint64_t{found.stx_dev_major} << 32 | found.stx_dev_minor;
    FileFacts facts{.identity = {device, found.stx_ino},
                    // Before Linux 5.8, bind mounts of the same file system have equal values.
                    .mount = (found.stx_mask & STATX_MNT_ID) != 0 ? found.stx_mnt_id : device,
                    .mode = found.stx_mode,
                    .owner = found.stx_uid,
                    .modified = nanoseconds(found.stx_mtime),
                    .changed = nanoseconds(found.stx_ctime),
                    .created = {}};
    if ((found.stx_mask & STATX_BTIME) != 0)
        facts.created = nanoseconds(found.stx_btime);
    return facts;
}

// With O_PATH, the path may contain folders that may be entered but not listed, like other users' homes.
Settings::Descriptor openFolder(int parent, const std::string& name)
{
    return Settings::Descriptor(openat(parent, name.c_str(), O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
}

std::string pathOf(const Settings::Descriptor& folder)
{
    std::array<char, PATH_MAX> path{};
    const auto link = "/proc/self/fd/" + std::to_string(folder.get());
    const auto length = readlink(link.c_str(), path.data(), path.size());
    return length > 0 ? std::string(path.data(), static_cast<std::size_t>(length)) : std::string();
}

std::optional<std::vector<std::string>> mountPoints()
{
    std::vector<std::string> points;
    std::ifstream table("/proc/self/mountinfo");
    for (std::string line; std::getline(table, line);) {
        std::istringstream fields(line);
        std::string skipped;
        std::string point;
        fields >> skipped >> skipped >> skipped >> skipped >> point;
        points.push_back(unescaped(point));
    }
    if (points.empty())
        return std::nullopt;
    return points;
}

} // namespace Kest::App
