#include "lipc/ShmManaged.h"

#include "lipc/SharedFile.h"
#include "log/Output.h"

#include <cstdint>
#include <sys/ipc.h>
#include <sys/mman.h>
#include <sys/shm.h>

namespace LIPC {
namespace {

constexpr int kModeWorldReadable = 0444;

bool isLongEnough(int id, std::size_t bytes)
{
    shmid_ds status{};
    return shmctl(id, IPC_STAT, &status) == 0 && status.shm_segsz >= bytes;
}

} // namespace

ShmManaged::ShmManaged(const char* name) : key(shmKey(name)) {}

void ShmManaged::attach(std::size_t bytes, Access access)
{
    if (key == -1) // shmget accepts -1 as a key, of some other program's segment
        return;
    const bool writes = access == Access::readWrite;
    id = shmget(key, 0, writes ? kModeWorldWritable : kModeWorldReadable);
    if (id < 0)
        return;
    address = shmat(id, nullptr, writes ? 0 : SHM_RDONLY);
    if (reinterpret_cast<std::intptr_t>(address) == -1) {
        Lct::printSystemError("shmat");
        address = nullptr;
        return;
    }
    // Checked after attaching: the segment can no longer be replaced by a smaller one.
    if (!isLongEnough(id, bytes))
        detach();
}

void ShmManaged::mapPages([[maybe_unused]] std::size_t bytes) const
{
#ifdef MADV_POPULATE_READ // fails before Linux 5.14, where pages are read on first use
    if (address != nullptr)
        madvise(address, bytes, MADV_POPULATE_READ);
#endif
}

void ShmManaged::detach()
{
    if (address != nullptr)
        shmdt(address);
    address = nullptr;
}

} // namespace LIPC
