// A program that does nothing but look at the host's session once a second, page by page: what the agent's
// idle time is measured against.
#include "lipc/SessionBuffer.h"
#include "lipc/SettingsRecord.h"
#include "lipc/ShmKey.h"

#include <sys/ipc.h>
#include <sys/shm.h>
#include <unistd.h>

int main()
{
    constexpr std::size_t kPageBytes = 4096;
    volatile unsigned sum = 0;
    for (;;) {
        void* address = shmat(shmget(LIPC::shmKey(LIPC::kSessionSegment), 0, 0), nullptr, 0);
        if (reinterpret_cast<std::intptr_t>(address) == -1)
            return 1;
        const auto* bytes = static_cast<const unsigned char*>(address);
        for (std::size_t i = 0; i < LIPC::SessionBuffer::kSegmentBytes; i += kPageBytes)
            sum = sum + bytes[i];
        shmdt(address);
        sleep(1);
    }
}
