// A main loop for front ends that bring none of their own.
#pragma once

#include "platform/posix/JobQueue.h"

#include <functional>
#include <map>
#include <vector>

struct pollfd;

namespace Kest::Posix {

/// A job queue that runs by itself: sleeps in poll until there is something to do. Main thread only, but for
/// `post`.
class MainLoop : public JobQueue {
public:
    /// Calls `readable` whenever the descriptor has something to read or is at its end.
    void watchInput(int descriptor, std::function<void()> readable);
    /// The same for a descriptor that can be written to.
    void watchOutput(int descriptor, std::function<void()> writable);
    /// Ends either watch; does nothing when there is none.
    void unwatch(int descriptor) { watches.erase(descriptor); }
    /// Returns after `quit`, when the work at hand is done. False, with one line printed, when waiting for
    /// events fails.
    bool run();

private:
    std::vector<pollfd> watched() const;
    void runReady(const std::vector<pollfd>& polled);

    struct Watch {
        short events = 0; // as poll takes them
        std::function<void()> ready;
    };
    std::map<int, Watch> watches; // by descriptor
};

} // namespace Kest::Posix
