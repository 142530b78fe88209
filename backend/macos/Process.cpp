// Processes on macOS, by libproc.
#include "backend/Process.h"

#include "backend/ProcessFacts.h"

#include <cerrno>
#include <libproc.h>
#include <sys/proc_info.h>
#include <sys/stat.h>
#include <vector>

namespace Kest::Settings {
namespace {

constexpr std::uint64_t kMicroseconds = 1'000'000;
constexpr std::uint32_t kZombie = 5; // SZOMB of sys/proc.h
constexpr std::uint64_t kZombiesToo = 1;

std::vector<proc_fdinfo> descriptorsOf(std::int32_t pid)
{
    const int size = proc_pidinfo(pid, PROC_PIDLISTFDS, 0, nullptr, 0);
    if (size <= 0)
        return {};
    std::vector<proc_fdinfo> list(static_cast<std::size_t>(size) / sizeof(proc_fdinfo));
    const int filled = proc_pidinfo(pid, PROC_PIDLISTFDS, 0, list.data(), size);
    list.resize(filled > 0 ? static_cast<std::size_t>(filled) / sizeof(proc_fdinfo) : 0);
    return list;
}

} // namespace

// On macOS threads have no process ids.
ProcessFacts processFacts(std::int32_t pid)
{
    if (pid <= 0)
        return {.state = ProcessFacts::State::ended};
    proc_bsdinfo info{};
    errno = 0;
    if (proc_pidinfo(pid, PROC_PIDTBSDINFO, kZombiesToo, &info, sizeof info) != static_cast<int>(sizeof info))
        return {.state = errno == ESRCH ? ProcessFacts::State::ended : ProcessFacts::State::unreadable};
    return {.state = info.pbi_status == kZombie ? ProcessFacts::State::ended : ProcessFacts::State::running,
            .startTime = info.pbi_start_tvsec * kMicroseconds + info.pbi_start_tvusec,
            .parent = static_cast<std::int32_t>(info.pbi_ppid),
            .realUser = info.pbi_ruid,
            .effectiveUser = info.pbi_uid};
}

std::optional<std::int64_t> startedAt(const ProcessIdentity& process)
{
    if (process.startTime == 0)
        return std::nullopt;
    return static_cast<std::int64_t>(process.startTime * 1000);
}

bool hasOpen(const ProcessIdentity& process, const std::string& path)
{
    struct stat wanted {};
    if (process.startTime == 0 || processFacts(process.pid).startTime != process.startTime ||
        lstat(path.c_str(), &wanted) != 0)
        return false;
    for (const auto& descriptor : descriptorsOf(process.pid)) {
        vnode_fdinfo opened{};
        if (descriptor.proc_fdtype == PROX_FDTYPE_VNODE &&
            proc_pidfdinfo(process.pid, descriptor.proc_fd, PROC_PIDFDVNODEINFO, &opened, sizeof opened) ==
                static_cast<int>(sizeof opened) &&
            opened.pvi.vi_stat.vst_dev == static_cast<std::uint32_t>(wanted.st_dev) &&
            opened.pvi.vi_stat.vst_ino == wanted.st_ino)
            return true;
    }
    return false;
}

Descriptor holdProcess(std::int32_t) { return {}; }

bool killHeld(const Descriptor&)
{
    errno = ENOSYS;
    return false;
}

} // namespace Kest::Settings
