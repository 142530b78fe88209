// A main loop for front ends that bring none of their own.
#pragma once

#include "backend/Guarded.h"

#include <deque>
#include <functional>

namespace Kest::Posix {

/// One for each process: while it lives, SIGTERM, SIGINT and SIGHUP end the loop as `quit` does, and a second
/// one ends the process at once. Sleeps in poll until there is something to do.
class MainLoop {
public:
    MainLoop();
    ~MainLoop();
    MainLoop(const MainLoop&) = delete;
    MainLoop& operator=(const MainLoop&) = delete;

    /// Any thread. Jobs run in order on the thread that runs the loop.
    void post(std::function<void()> job);
    /// Main thread. Calls `readable` whenever the descriptor has something to read or is at its end.
    void watchInput(int descriptor, std::function<void()> readable);
    void unwatchInput() { input = -1; }
    /// Main thread. Returns when asked to quit; jobs that are left are dropped.
    void run();
    void quit() { quitting = true; }
    bool isQuitting() const { return quitting; }

    // For another loop that runs in place of this one: what it watches for, and what it then does.
    int wakeUpDescriptor() const { return wakeUpRead; }
    void dispatchWakeUps();

private:
    void drainWakeUps();
    void runJobs();

    int wakeUpRead = -1;
    int wakeUpWrite = -1;
    int input = -1;
    std::function<void()> inputReadable;
    bool quitting = false;

    Mutex jobsMutex;
    std::deque<std::function<void()>> jobs KEST_GUARDED_BY(jobsMutex);
};

} // namespace Kest::Posix
