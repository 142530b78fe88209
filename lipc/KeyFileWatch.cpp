#include "lipc/KeyFileWatch.h"

#include <sys/ipc.h>
#include <sys/shm.h>
#include <utility>

namespace LIPC {

bool KeyFileWatch::detectKeyFileLoss(const ShmManaged& attachment)
{
    if (attachment.address != nullptr) {
        key = attachment.key;
        id = attachment.id;
        return false;
    }
    if (id < 0 || attachment.key == -1 || attachment.key == key)
        return false;
    return shmget(key, 0, 0) == std::exchange(id, -1);
}

} // namespace LIPC
