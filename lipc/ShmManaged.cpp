#include "lipc/ShmManaged.h"

#include "lipc/ShmKey.h"

#include <cstdint>
#include <cstdio>
#include <sys/ipc.h>
#include <sys/shm.h>

namespace LIPC {
namespace {

constexpr int kReadWriteForAll = 0666;

bool isLongEnough(int id, std::size_t bytes)
{
    shmid_ds status{};
    return shmctl(id, IPC_STAT, &status) == 0 && status.shm_segsz >= bytes;
}

} // namespace

ShmManaged::ShmManaged(const char* name) : key(shmKey(name)) {}

void ShmManaged::attach(std::size_t bytes)
{
    if (key == -1) // a valid key for shmget, and another system's segment
        return;
    id = shmget(key, 0, kReadWriteForAll);
    if (id < 0)
        return;
    address = shmat(id, nullptr, 0);
    if (reinterpret_cast<std::intptr_t>(address) == -1) {
        std::perror("shmat");
        address = nullptr;
        return;
    }
    // Asked after attaching: the segment cannot be exchanged for a shorter one any more.
    if (!isLongEnough(id, bytes))
        detach();
}

void ShmManaged::detach()
{
    if (address != nullptr)
        shmdt(address);
    address = nullptr;
}

} // namespace LIPC
