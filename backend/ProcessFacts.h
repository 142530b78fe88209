// Queries about a process that each platform implements, for Process.cpp only.
#pragma once

#include "backend/Descriptor.h"

#include <cstdint>
#include <sys/types.h>

namespace Kest::Settings {

struct ProcessFacts {
    enum class State {
        running,
        ended,     // no process has the id, or the process is a zombie
        thread,    // a thread has the id
        unreadable // the query failed, for example because no descriptor is free
    };
    State state = State::unreadable;
    std::uint64_t startTime = 0; // as in `ProcessIdentity`; 0 if unknown or no process has the id
    std::int32_t parent = 0;     // process id
    uid_t realUser = 0;
    uid_t effectiveUser = 0;
};

/// Returns the facts about the process that has this id now. For a thread, an unreadable process or an unused
/// id, all fields except `state` are 0. Any thread.
ProcessFacts processFacts(std::int32_t pid);

/// Returns a descriptor that refers to the process with this id, even after the id is reused. The descriptor
/// becomes readable when the process has ended. Returns an empty `Descriptor` if the system has no
/// descriptors of processes, if no process has the id, or on another failure. Any thread.
Descriptor holdProcess(std::int32_t pid);

/// Sends SIGKILL to the process of a descriptor, which must be a result of `holdProcess` and not empty.
/// Returns false with `errno` set on failure. Any thread.
bool killHeld(const Descriptor& process);

} // namespace Kest::Settings
