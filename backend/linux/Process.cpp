// Processes on Linux: /proc, and process descriptors since Linux 5.3.
#include "backend/Process.h"

#include "backend/ProcessFacts.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <ctime>
#include <dirent.h>
#include <fcntl.h>
#include <string_view>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <tuple>

namespace Kest::Settings {
namespace {

constexpr std::int64_t kNanoseconds = 1'000'000'000;

// System call numbers, equal on every architecture; older C libraries lack their names.
constexpr long kPidfdSendSignal = 424;
constexpr long kPidfdOpen = 434;

// Opens the process's folder in /proc. The open folder belongs to this process: reading its files fails after
// the process has ended, even if the id is used again.
Descriptor openFolder(std::int32_t pid)
{
    return Descriptor(open(("/proc/" + std::to_string(pid)).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
}

// Returns an empty text with `errno` set if the file cannot be read.
std::string readAll(const Descriptor& folder, const char* name)
{
    const Descriptor file(openat(folder.get(), name, O_RDONLY | O_CLOEXEC));
    std::array<char, 8192> bytes{}; // large enough for the required part of either file
    const auto count = file ? read(file.get(), bytes.data(), bytes.size()) : -1;
    return count > 0 ? std::string(bytes.data(), static_cast<std::size_t>(count)) : std::string();
}

// Returns the number at an index, from 0, of a list that is separated by blanks or tabs.
std::uint64_t numberAt(std::string_view text, int index)
{
    std::uint64_t number = 0;
    for (std::size_t begin = 0; (begin = text.find_first_not_of(" \t", begin)) != std::string_view::npos;) {
        const auto end = std::min(text.find_first_of(" \t\n", begin), text.size());
        if (index-- == 0) {
            std::from_chars(text.data() + begin, text.data() + end, number);
            break;
        }
        begin = end;
    }
    return number;
}

// Returns a number of a line in /proc/PID/status. The process can choose the name in the first line, but no
// line break in it.
std::uint64_t field(std::string_view status, std::string_view label, int index = 0)
{
    const auto begin = status.find(label);
    return begin == std::string_view::npos ? 0 : numberAt(status.substr(begin + label.size()), index);
}

ProcessFacts readFacts(const Descriptor& folder, std::int32_t pid)
{
    const auto status = readAll(folder, "status");
    const auto stat = readAll(folder, "stat");
    const auto nameEnd = stat.rfind(')'); // the name may contain anything
    if (status.empty() || nameEnd == std::string::npos)
        return {.state = errno == ESRCH ? ProcessFacts::State::ended : ProcessFacts::State::unreadable};
    if (field(status, "\nTgid:") != static_cast<std::uint64_t>(pid))
        return {.state = ProcessFacts::State::thread};
    // From the third field, the state; fields 20 and 22 are the number of threads and the start time.
    const auto fields = std::string_view(stat).substr(nameEnd + 1);
    const char state = fields.size() > 1 ? fields[1] : 'X';
    const bool hasEnded = (state == 'Z' || state == 'X') && numberAt(fields, 17) <= 1;
    return {.state = hasEnded ? ProcessFacts::State::ended : ProcessFacts::State::running,
            .startTime = numberAt(fields, 19),
            .parent = static_cast<std::int32_t>(field(status, "\nPPid:")),
            .realUser = static_cast<uid_t>(field(status, "\nUid:", 0)),
            .effectiveUser = static_cast<uid_t>(field(status, "\nUid:", 1))};
}

bool isNobody(std::int32_t pid) { return pid <= 0 || (kill(pid, 0) != 0 && errno == ESRCH); }

// Compares without a request to the file's disk, which may not answer.
bool isSameFile(int folder, const char* name, const struct statx& wanted)
{
    struct statx opened {};
    return statx(folder, name, AT_STATX_DONT_SYNC, STATX_INO, &opened) == 0 &&
           std::tie(opened.stx_dev_major, opened.stx_dev_minor, opened.stx_ino) ==
               std::tie(wanted.stx_dev_major, wanted.stx_dev_minor, wanted.stx_ino);
}

std::int64_t nanoseconds(clockid_t clock)
{
    timespec now{};
    clock_gettime(clock, &now);
    return now.tv_sec * kNanoseconds + now.tv_nsec;
}

} // namespace

ProcessFacts processFacts(std::int32_t pid)
{
    if (isNobody(pid))
        return {.state = ProcessFacts::State::ended};
    auto facts = ProcessFacts();
    if (const auto folder = openFolder(pid))
        facts = readFacts(folder, pid);
    return facts.state == ProcessFacts::State::unreadable && isNobody(pid)
               ? ProcessFacts{.state = ProcessFacts::State::ended}
               : facts;
}

std::optional<std::int64_t> startedAt(const ProcessIdentity& process)
{
    if (process.startTime == 0)
        return std::nullopt;
    const auto tick = kNanoseconds / sysconf(_SC_CLK_TCK);
    return nanoseconds(CLOCK_REALTIME) - nanoseconds(CLOCK_BOOTTIME) +
           static_cast<std::int64_t>(process.startTime) * tick;
}

bool hasOpen(const ProcessIdentity& process, const std::string& path)
{
    struct statx wanted {};
    const auto folder = openFolder(process.pid);
    if (process.startTime == 0 || !folder || readFacts(folder, process.pid).startTime != process.startTime ||
        statx(AT_FDCWD, path.c_str(), AT_SYMLINK_NOFOLLOW, STATX_INO, &wanted) != 0)
        return false;
    Descriptor list(openat(folder.get(), "fd", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    DIR* entries = list ? fdopendir(list.get()) : nullptr;
    if (entries == nullptr)
        return false;
    list.release();
    bool isFound = false;
    while (const dirent* entry = isFound ? nullptr : readdir(entries))
        isFound = isSameFile(dirfd(entries), entry->d_name, wanted);
    closedir(entries);
    return isFound;
}

Descriptor holdProcess(std::int32_t pid) { return Descriptor(static_cast<int>(syscall(kPidfdOpen, pid, 0))); }

bool killHeld(const Descriptor& process)
{
    return syscall(kPidfdSendSignal, process.get(), SIGKILL, nullptr, 0) == 0;
}

} // namespace Kest::Settings
