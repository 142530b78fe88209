// Jobs for the main thread and the process's signals, behind one descriptor.
#pragma once

#include "backend/Guarded.h"
#include "backend/WakeUp.h"

#include <deque>
#include <functional>
#include <map>

namespace Kest::Posix {

/// One for each process: while it lives, SIGTERM, SIGINT and SIGHUP call `quit`. A second one ends the
/// process at once, and so does the first one by SIGALRM when the process still runs five seconds later. To
/// embed the queue in an event loop: poll `wakeUpDescriptor` for input, call `dispatchWakeUps`, check
/// `isQuitting`.
class JobQueue {
public:
    JobQueue();
    ~JobQueue();
    JobQueue(const JobQueue&) = delete;
    JobQueue& operator=(const JobQueue&) = delete;

    /// Any thread. Jobs run in order on the main thread; those left when it quits are dropped.
    void post(std::function<void()> job);
    /// Main thread. Calls `arrived` from `dispatchWakeUps` when the signal has come; several at once may
    /// count as one. Not for the ending signals. The signal has its default effect again after the queue.
    void watchSignal(int signal, std::function<void()> arrived);
    /// Main thread. Called when an ending signal ends the process at once; must be async-signal-safe.
    static void setEmergencyCleanup(void (*cleanup)());
    /// Main thread. No further job runs.
    void quit() { quitting = true; }
    bool isQuitting() const { return quitting; }

    int wakeUpDescriptor() const { return wakeUp.descriptor(); }
    /// Main thread. Handles the signals that have arrived, then runs the jobs that are waiting.
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
