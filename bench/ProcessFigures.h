// What the system knows of a running program.
#pragma once

#include <sys/types.h>

namespace Kest::Bench {

struct Memory {
    double privateMb = 0;      // USS
    double proportionalMb = 0; // PSS
    double segmentMb = 0;      // the part of the PSS that is System V shared memory
};
Memory memoryOf(pid_t process);

struct Activity {
    double cpuMs = 0;   // of all threads since they began
    double wakeUps = 0; // how often a thread has gone to sleep
};
Activity activityOf(pid_t process);

} // namespace Kest::Bench
