// A main loop for front ends whose toolkit has none.
#pragma once

#include "platform/posix/JobQueue.h"

#include <functional>
#include <map>
#include <vector>

struct pollfd;

namespace Kest::Posix {

/// A job queue with a loop that waits with poll. A descriptor has at most one watch, for input or for output;
/// a new watch replaces the previous one. Main thread only, except `post`.
class MainLoop : public JobQueue {
public:
    /// Calls `readable` whenever the descriptor has input, is at its end or has failed.
    void watchInput(int descriptor, std::function<void()> readable);
    /// Calls `writable` whenever the descriptor accepts output or has failed.
    void watchOutput(int descriptor, std::function<void()> writable);
    /// Removes the watch of a descriptor; does nothing if there is none.
    void unwatch(int descriptor) { watches.erase(descriptor); }
    /// Runs jobs and callbacks until `isQuitting` is true, then returns true. The callback that calls `quit`
    /// is the last one. Returns false and prints one line if waiting for events fails.
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
