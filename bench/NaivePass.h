#pragma once

#include "lipc/SessionBuffer.h"
#include "lipc/ShmKey.h"

#include <stdexcept>
#include <sys/shm.h>

namespace Kest::Bench {

/// Attaches the session segment with the name `segment`, reads one byte of each page and detaches it. Throws
/// std::runtime_error if there is no such segment. bench/measure compares the agent's CPU time with that of
/// this function.
inline void naivePass(const char* segment)
{
    constexpr std::size_t kPageBytes = 4096;
    auto* address = shmat(shmget(LIPC::shmKey(segment), 0, 0), nullptr, 0);
    if (reinterpret_cast<std::intptr_t>(address) == -1)
        throw std::runtime_error("no session");
    for (std::size_t i = 0; i < LIPC::SessionBuffer::kSegmentBytes; i += kPageBytes)
        static_cast<void>(static_cast<const volatile unsigned char*>(address)[i]);
    shmdt(address);
}

} // namespace Kest::Bench
