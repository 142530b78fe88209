#include "tools/k3dhost_simulator/HostSegments.h"

#include "lipc/SettingsRecord.h"
#include "lipc/SharedFile.h"
#include "lipc/ShmKey.h"

#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <sys/ipc.h>
#include <sys/shm.h>
#include <unistd.h>

namespace K3DHostSimulator {
namespace {

constexpr const char* kSegmentNames[] = {LIPC::kVersionSegment, LIPC::kSessionSegment};

std::string systemError() { return std::strerror(errno); }

// A killed process still accepts signals until its parent has waited for it. Without /proc, returns false.
bool isZombie(pid_t process)
{
    std::ifstream file("/proc/" + std::to_string(process) + "/stat");
    std::string status;
    std::getline(file, status);
    const auto name = status.rfind(')'); // ends the program's name, which may contain any character
    return name != std::string::npos && status.compare(name, 3, ") Z") == 0;
}

bool isAlive(pid_t process)
{
    // If it is this process's id, an earlier process had the same id.
    if (process <= 0 || process == getpid())
        return false;
    const bool exists = kill(process, 0) == 0 || errno == EPERM;
    return exists && !isZombie(process);
}

// The segment with a name's key; `id` is -1 if there is none.
struct ExistingSegment {
    int id = -1;
    pid_t creator = 0;
};

ExistingSegment findSegment(const char* name)
{
    const key_t key = LIPC::shmKey(name);
    const int id = key == -1 ? -1 : shmget(key, 0, 0);
    shmid_ds status{};
    if (id < 0 || shmctl(id, IPC_STAT, &status) != 0)
        return {};
    return {id, status.shm_cpid};
}

Failure removeStaleSegments()
{
    std::optional<pid_t> creator;
    for (const char* name : kSegmentNames) {
        const auto found = findSegment(name);
        if (found.id < 0)
            continue;
        creator = found.creator;
        if (shmctl(found.id, IPC_RMID, nullptr) != 0)
            return std::string("cannot remove the segment ") + name + " that process " +
                   std::to_string(*creator) + " left: " + systemError();
    }
    if (creator)
        std::fprintf(stderr, "removed the segments that process %d left\n", static_cast<int>(*creator));
    return std::nullopt;
}

} // namespace

pid_t runningHost()
{
    for (const char* name : kSegmentNames) {
        const auto found = findSegment(name);
        if (found.id >= 0 && isAlive(found.creator))
            return found.creator;
    }
    return 0;
}

Failure HostSegments::create()
{
    if (const pid_t host = runningHost(); host != 0)
        return "a host is already running (process " + std::to_string(host) + ")";
    if (auto failure = removeStaleSegments())
        return failure;
    auto failure = create(LIPC::kVersionSegment, LIPC::VersionBuffer::kSegmentBytes, versionSegment);
    if (!failure)
        failure = create(LIPC::kSessionSegment, LIPC::SessionBuffer::kSegmentBytes, sessionSegment);
    if (failure)
        remove();
    return failure;
}

Failure HostSegments::create(const char* name, std::size_t bytes, Segment& segment)
{
    const key_t key = LIPC::shmKey(name);
    if (key == -1)
        return std::string("no key for the segment ") + name;
    segment.id = shmget(key, bytes, IPC_CREAT | IPC_EXCL | LIPC::kModeWorldWritable);
    if (segment.id < 0)
        return std::string("cannot create the segment ") + name + ": " + systemError();
    void* address = shmat(segment.id, nullptr, 0);
    if (reinterpret_cast<std::intptr_t>(address) == -1)
        return std::string("cannot attach the segment ") + name + ": " + systemError();
    segment.address = address;
    return std::nullopt;
}

void HostSegments::remove()
{
    remove(sessionSegment);
    remove(versionSegment);
}

void HostSegments::remove(Segment& segment)
{
    if (segment.address != nullptr)
        shmdt(segment.address);
    if (segment.id >= 0)
        shmctl(segment.id, IPC_RMID, nullptr);
    segment = {};
}

} // namespace K3DHostSimulator
