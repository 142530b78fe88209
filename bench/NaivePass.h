#pragma once

#include "lipc/SessionBuffer.h"
#include "lipc/ShmKey.h"

#include <stdexcept>
#include <sys/shm.h>

namespace Kest::Bench {

/// Reads the host's session in the simplest way: attaches it and touches each page once. bench/measure
/// compares the agent's pass and the idle agent with this function. Throws std::runtime_error if there is no
/// session.
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
