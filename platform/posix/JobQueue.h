// A queue of jobs for the main thread. The queue also handles signals of the process.
#pragma once

#include "backend/Mutex.h"
#include "backend/WakeUp.h"

#include <deque>
#include <functional>
#include <map>

namespace Kest::Posix {

/// Create at most one at a time. The constructor makes the process ignore SIGPIPE. While the queue exists,
/// the ending signals SIGTERM, SIGINT and SIGHUP have the effect of `quit` in the next `dispatchWakeUps`. A
/// second ending signal ends the process at once. SIGALRM does the same if the process still runs five
/// seconds after the first ending signal. To embed the queue in an event loop, poll `wakeUpDescriptor` for
/// input and call `dispatchWakeUps` when there is input. End the loop if `isQuitting` is then true.
class JobQueue {
public:
    /// Prints one line and exits with status 1 if the descriptor to poll cannot be created.
    JobQueue();
    /// Restores the default actions of the handled signals, except SIGPIPE. Exception: if an ending signal
    /// has arrived, the handlers of the ending signals and of SIGALRM remain, and the five seconds continue.
    ~JobQueue();
    JobQueue(const JobQueue&) = delete;
    JobQueue& operator=(const JobQueue&) = delete;

    /// Adds a job for `dispatchWakeUps`, which runs jobs in the order of these calls. Jobs that have not run
    /// when `isQuitting` becomes true are dropped. Any thread.
    void post(std::function<void()> job);
    /// Sets a function that `dispatchWakeUps` calls after `signal` has arrived. If the signal arrives several
    /// times, there may be only one call. `signal` must not be SIGALRM or an ending signal. Main thread.
    void watchSignal(int signal, std::function<void()> arrived);
    /// Sets a function that is called just before a signal ends the process at once. The function must be
    /// async-signal-safe. Null means no function. Main thread.
    static void setEmergencyCleanup(void (*cleanup)());
    /// Makes `isQuitting` true, so that no further job runs. Main thread.
    void quit() { quitting = true; }
    bool isQuitting() const { return quitting; }

    int wakeUpDescriptor() const { return wakeUp.descriptor(); }
    /// Handles the signals that have arrived, then runs the jobs that are queued at that time. Main thread.
    void dispatchWakeUps();

private:
    void handleSignals();
    std::deque<std::function<void()>> takeJobs();

    Settings::WakeUp wakeUp;
    std::map<int, std::function<void()>> signals;
    bool quitting = false;

    Mutex jobsMutex;
    std::deque<std::function<void()>> jobs KEST_GUARDED_BY(jobsMutex);
};

} // namespace Kest::Posix
