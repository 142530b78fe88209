// What the main thread has for the clients, on its way to the thread of the socket.
#pragma once

#include "backend/Guarded.h"
#include "backend/WakeUp.h"

#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <utility>

namespace Kest::Control {

/// Identifies a connection; never given again.
using ClientId = std::uint64_t;
constexpr ClientId kAllWatching = 0;

struct Message {
    ClientId client = kAllWatching;
    std::string text;         // whole lines
    bool startsWatch = false; // a reply: changes follow from here on
};

/// Any thread.
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
    std::deque<Message> take()
    {
        wakeUp.clear();
        const MutexLock lock(mutex);
        return std::exchange(messages, {});
    }
    /// Readable while messages wait.
    int descriptor() const { return wakeUp.descriptor(); }

private:
    const Settings::WakeUp wakeUp;
    Mutex mutex;
    std::deque<Message> messages KEST_GUARDED_BY(mutex);
};

} // namespace Kest::Control
