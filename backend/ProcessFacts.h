// What each system reports about a process, and how it holds one; for Process.cpp only.
#pragma once

#include "backend/Descriptor.h"

#include <cstdint>
#include <sys/types.h>

namespace Kest::Settings {

struct ProcessFacts {
    enum class State {
        running,
        ended,     // no process has the number, or it has ended and waits for its parent
        thread,    // the number is that of a thread
        unreadable // the system does not answer, for example without free descriptors
    };
    State state = State::unreadable;
    std::uint64_t startTime = 0; // as in ProcessIdentity; 0 when no process has the number
    std::int32_t parent = 0;
    uid_t realUser = 0;
    uid_t effectiveUser = 0;
};

/// Any thread.
ProcessFacts processFacts(std::int32_t pid);

/// Returns a descriptor that stays with this very process, however often its number is given again, and
/// becomes readable when the process has ended. None where the system has no such thing. Any thread.
Descriptor holdProcess(std::int32_t pid);

/// Sends SIGKILL to a held process; false with `errno` set. Any thread.
bool killHeld(const Descriptor& process);

} // namespace Kest::Settings
