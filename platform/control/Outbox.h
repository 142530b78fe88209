// A queue of replies and events, from the main thread to the server's thread.
#pragma once

#include "backend/Mutex.h"
#include "backend/WakeUp.h"

#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <utility>

namespace Kest::Control {

/// Identifies a connection; never reused.
using ClientId = std::uint64_t;
constexpr ClientId kAllWatchers = 0;

struct Message {
    ClientId client = kAllWatchers; // the recipient; `kAllWatchers`: all clients that watch
    std::string text;               // whole lines, or empty
    bool startsWatch = false;       // true in the reply to `watch`: the client gets all later events
};

/// Any thread, except `take`.
class Outbox {
public:
    void add(Message message)
    {
        {
            const MutexLock lock(mutex);
            messages.push_back(std::move(message));
        }
        wakeUp.raise();
    }
    /// Returns all messages and empties the queue. Only for the thread that polls `descriptor`.
    std::deque<Message> take()
    {
        wakeUp.clear();
        const MutexLock lock(mutex);
        return std::exchange(messages, {});
    }
    /// Returns a descriptor that is readable while messages are queued.
    int descriptor() const { return wakeUp.descriptor(); }

private:
    const Settings::WakeUp wakeUp;
    Mutex mutex;
    std::deque<Message> messages KEST_GUARDED_BY(mutex);
};

} // namespace Kest::Control
