// A main loop for front ends that bring none of their own.
#pragma once

#include "backend/Guarded.h"

#include <deque>
#include <functional>
#include <map>
#include <vector>

struct pollfd;

namespace Kest::Posix {

/// One for each process: while it lives, SIGTERM, SIGINT and SIGHUP end the loop as `quit` does. A second one
/// ends the process at once, and so does the first one when the loop has not ended within five seconds.
/// Sleeps in poll until there is something to do.
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
    /// Main thread. The same for a descriptor that can be written to.
    void watchOutput(int descriptor, std::function<void()> writable);
    /// Main thread. Ends either watch; does nothing when there is none.
    void unwatch(int descriptor) { watches.erase(descriptor); }
    /// Main thread. Calls `arrived` from the loop when the signal has come; several at once may count as one.
    /// Not for the ending signals. The signal has its default effect again when the loop is gone.
    void watchSignal(int signal, std::function<void()> arrived);
    /// Main thread. Called when an ending signal ends the process at once; must be async-signal-safe.
    static void setEmergencyCleanup(void (*cleanup)());
    /// Main thread. Returns when asked to quit; jobs that are left are dropped. False, with one line printed,
    /// when waiting for events fails.
    bool run();
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
    void runReady(const std::vector<pollfd>& polled);

    int wakeUpRead = -1;
    int wakeUpWrite = -1;
    struct Watch {
        short events = 0; // as poll takes them
        std::function<void()> ready;
    };
    std::map<int, Watch> watches; // by descriptor
    std::map<int, std::function<void()>> signals;
    bool quitting = false;

    Mutex jobsMutex;
    std::deque<std::function<void()>> jobs KEST_GUARDED_BY(jobsMutex);
};

} // namespace Kest::Posix
