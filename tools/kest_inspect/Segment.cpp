#include "tools/kest_inspect/Segment.h"

#include "lipc/SharedFile.h"
#include "lipc/ShmKey.h"

#include <cerrno>
#include <csignal>
#include <pwd.h>
#include <sys/ipc.h>
#include <sys/shm.h>

namespace KestInspect {

std::optional<Segment> findSegment(const std::string& name)
{
    const key_t key = LIPC::existingShmKey(name.c_str());
    Segment segment;
    segment.id = key == -1 ? -1 : shmget(key, 0, 0);
    if (segment.id < 0)
        return std::nullopt;
    shmid_ds status{};
    if (shmctl(segment.id, IPC_STAT, &status) != 0) {
        segment.error = errno;
        return segment;
    }
    segment.bytes = status.shm_segsz;
    segment.mode = status.shm_perm.mode & 0777U;
    segment.owner = status.shm_perm.uid;
    segment.creator = status.shm_cpid;
    segment.attached = status.shm_nattch;
    segment.isWritable = shmget(key, 0, LIPC::kModeWorldWritable) >= 0;
    return segment;
}

bool hasEnded(pid_t process) { return process > 0 && kill(process, 0) != 0 && errno == ESRCH; }

std::string userName(uid_t user)
{
    const passwd* entry = getpwuid(user);
    return entry == nullptr ? std::to_string(user) : entry->pw_name;
}

} // namespace KestInspect
