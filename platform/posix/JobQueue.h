// A queue of jobs for the main thread, which also handles the process's signals. One descriptor to poll.
#pragma once

#include "backend/Mutex.h"
#include "backend/WakeUp.h"

#include <deque>
#include <functional>
#include <map>

namespace Kest::Posix {

/// One per process. While it exists, SIGTERM, SIGINT and SIGHUP have the effect of `quit`, and SIGPIPE is
/// ignored. A second one of the three ends the process at once, and so does SIGALRM if the process still runs
/// five seconds after the first one. To embed the queue in an event loop: poll `wakeUpDescriptor` for input,
/// then call `dispatchWakeUps`, then end the loop if `isQuitting`.
class JobQueue {
public:
    /// Prints one line and exits with status 1 if the descriptor to poll cannot be created.
    JobQueue();
    /// Restores the default actions of the handled signals, except SIGPIPE. If one of the three ending
    /// signals has arrived, keeps their handlers, and the five seconds continue.
    ~JobQueue();
    JobQueue(const JobQueue&) = delete;
    JobQueue& operator=(const JobQueue&) = delete;

    /// Adds a job. Jobs run on the main thread in the order of these calls. Jobs that have not run when the
    /// queue quits are dropped. Any thread.
    void post(std::function<void()> job);
    /// Makes `dispatchWakeUps` call `arrived` after the signal has arrived. Several signals may cause one
    /// call. Must not be used for the three signals that quit. Main thread.
    void watchSignal(int signal, std::function<void()> arrived);
    /// Sets a function that is called when a signal ends the process at once. The function must be
    /// async-signal-safe; null means none. Main thread.
    static void setEmergencyCleanup(void (*cleanup)());
    /// Makes `isQuitting` true, so that no further job runs. Main thread.
    void quit() { quitting = true; }
    bool isQuitting() const { return quitting; }

    int wakeUpDescriptor() const { return wakeUp.descriptor(); }
    /// Handles the signals that have arrived, then runs the queued jobs. Main thread.
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
