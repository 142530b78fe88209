// A main loop for front ends whose toolkit has none.
#pragma once

#include "platform/posix/JobQueue.h"

#include <functional>
#include <map>
#include <vector>

struct pollfd;

namespace Kest::Posix {

/// A job queue with a loop, which waits in poll. Main thread only, except `post`.
class MainLoop : public JobQueue {
public:
    /// Calls `readable` whenever the descriptor is readable or at its end.
    void watchInput(int descriptor, std::function<void()> readable);
    /// Calls `writable` whenever the descriptor is writable.
    void watchOutput(int descriptor, std::function<void()> writable);
    /// Ends either watch; does nothing if there is none.
    void unwatch(int descriptor) { watches.erase(descriptor); }
    /// Runs until `quit`, and finishes the current callback. Returns false, with one line printed, if waiting
    /// for events fails.
    bool run();

private:
    std::vector<pollfd> watched() const;
    void runReady(const std::vector<pollfd>& polled);

    struct Watch {
        short events = 0; // for poll
        std::function<void()> ready;
    };
    std::map<int, Watch> watches; // by descriptor
};

} // namespace Kest::Posix
