// A queue of jobs for the main thread, and the process's signals, with one descriptor to poll.
#pragma once

#include "backend/Mutex.h"
#include "backend/WakeUp.h"

#include <deque>
#include <functional>
#include <map>

namespace Kest::Posix {

/// One per process. While it exists, SIGTERM, SIGINT and SIGHUP call `quit`. A second one ends the process at
/// once; after the first one, SIGALRM does so if the process still runs five seconds later. To embed the
/// queue in an event loop: poll `wakeUpDescriptor` for input, call `dispatchWakeUps`, check `isQuitting`.
class JobQueue {
public:
    JobQueue();
    ~JobQueue();
    JobQueue(const JobQueue&) = delete;
    JobQueue& operator=(const JobQueue&) = delete;

    /// Adds a job. Jobs run in order on the main thread; those left when it quits are dropped. Any thread.
    void post(std::function<void()> job);
    /// Calls `arrived` from `dispatchWakeUps` after the signal; several signals may cause one call. Not for
    /// the ending signals. The destructor restores the signal's default action. Main thread.
    void watchSignal(int signal, std::function<void()> arrived);
    /// Sets a function that is called when an ending signal ends the process at once; must be
    /// async-signal-safe. Main thread.
    static void setEmergencyCleanup(void (*cleanup)());
    /// Requests the end: no further job runs. Main thread.
    void quit() { quitting = true; }
    bool isQuitting() const { return quitting; }

    int wakeUpDescriptor() const { return wakeUp.descriptor(); }
    /// Handles the signals that have arrived, then runs the waiting jobs. Main thread.
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
