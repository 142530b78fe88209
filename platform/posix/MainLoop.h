// A main loop for front ends that bring none of their own.
#pragma once

#include "backend/Guarded.h"

#include <deque>
#include <functional>
#include <map>
#include <vector>

struct pollfd;

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
    void unwatchInput(int descriptor) { inputs.erase(descriptor); }
    /// Main thread. Calls `arrived` from the loop when the signal has come; several at once may count as one.
    /// Not for the ending signals. The signal has its default effect again when the loop is gone.
    void watchSignal(int signal, std::function<void()> arrived);
    /// Main thread. What to do when a second ending signal ends the process at once; must be
    /// async-signal-safe.
    static void setLastAct(void (*act)());
    /// Main thread. Returns when asked to quit; jobs that are left are dropped.
    void run();
    /// Main thread; `run` returns when the work at hand is done.
    void quit() { quitting = true; }
    bool isQuitting() const { return quitting; }

    // For another loop that runs in place of this one: what it watches for, and what it then does.
    int wakeUpDescriptor() const { return wakeUpRead; }
    void dispatchWakeUps();

private:
    std::vector<pollfd> watched() const;
    void drainWakeUps();
    void runJobs();
    void readInputs(const std::vector<pollfd>& polled);

    int wakeUpRead = -1;
    int wakeUpWrite = -1;
    std::map<int, std::function<void()>> inputs;
    std::map<int, std::function<void()>> signals;
    bool quitting = false;

    Mutex jobsMutex;
    std::deque<std::function<void()>> jobs KEST_GUARDED_BY(jobsMutex);
};

} // namespace Kest::Posix
