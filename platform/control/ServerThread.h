// The thread that serves the socket. It waits for nobody: neither for a client nor for the main thread.
#pragma once

#include "platform/control/Connection.h"
#include "platform/control/ListeningSocket.h"
#include "platform/control/Outbox.h"
#include "platform/control/Request.h"
#include "platform/control/Socket.h"

#include <atomic>
#include <chrono>
#include <functional>
#include <map>
#include <optional>
#include <poll.h>
#include <thread>
#include <vector>

namespace Kest::Control {

struct ServerLimits {
    std::size_t clients = 16;
    std::size_t unreadBytes = 1'048'576;          // of changes, for a client that watches
    std::chrono::milliseconds unreadTime{10'000}; // in which a client takes nothing of what it is sent
    std::function<std::optional<uid_t>(int)> peerUser = Control::peerUser;
};

/// Main thread only. Sleeps in poll while nobody is connected.
class ServerThread {
public:
    /// Called on the thread with each request; a reply must follow in the outbox, from any thread.
    using Handler = std::function<void(ClientId, const Request&)>;

    /// Throws std::system_error where the system has no thread left. `replies` and `watching` outlive it.
    ServerThread(ListeningSocket listening, Outbox& replies, std::atomic<int>& watching,
                 Handler requestHandler, ServerLimits serverLimits);
    /// Sends what clients take at once, and disconnects them.
    ~ServerThread();
    ServerThread(const ServerThread&) = delete;
    ServerThread& operator=(const ServerThread&) = delete;

private:
    using Connections = std::map<ClientId, Connection>;

    void run();
    std::vector<pollfd> polled() const;
    int timeout() const; // as poll takes it
    void acceptClients();
    void deliver(const std::deque<Message>& messages);
    void deliver(const Message& message);
    void serve(Connection& client, short ready);
    void takeRequest(Connection& client);
    void dropDead();

    const ListeningSocket socket;
    Outbox& outbox;
    std::atomic<int>& watchers;
    const Handler handler;
    const ServerLimits limits;
    std::atomic<bool> stopping = false;
    ClientId lastClient = kAllWatching;
    Connections clients;
    std::optional<Clock::time_point> acceptAfter; // while the system has no descriptors left
    std::thread thread;
};

} // namespace Kest::Control
