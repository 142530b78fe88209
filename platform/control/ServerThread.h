// The thread that serves the socket. It never waits for a client or for the main thread.
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
    std::size_t unreadBytes = 1'048'576;          // unsent events of a watching client
    std::chrono::milliseconds unreadTime{10'000}; // during which a client reads none of its output
    std::function<std::optional<uid_t>(int)> peerUser = Control::peerUser;
};

/// Main thread only. The thread waits in poll while no client is connected.
class ServerThread {
public:
    /// Called on the server's thread with each request. A reply must be added to the outbox, from any thread.
    using Handler = std::function<void(ClientId, const Request&)>;

    /// Throws std::system_error if the thread cannot be started. `replies` and `watching` outlive it.
    ServerThread(ListeningSocket listening, Outbox& replies, std::atomic<int>& watching,
                 Handler requestHandler, ServerLimits serverLimits);
    /// Sends as much as the sockets accept at once, and disconnects the clients.
    ~ServerThread();
    ServerThread(const ServerThread&) = delete;
    ServerThread& operator=(const ServerThread&) = delete;

private:
    using Connections = std::map<ClientId, Connection>;

    void run();
    std::vector<pollfd> polled() const;
    int timeout() const; // milliseconds; -1: none
    void acceptClients();
    void deliver(const std::deque<Message>& messages);
    void deliver(const Message& message);
    void serve(Connection& client, short ready);
    void takeRequest(Connection& client);
    void dropFinished();

    const ListeningSocket socket;
    Outbox& outbox;
    std::atomic<int>& watchers;
    const Handler handler;
    const ServerLimits limits;
    std::atomic<bool> stopping = false;
    ClientId lastClient = kAllWatchers;
    Connections clients;
    std::optional<Clock::time_point> acceptAfter; // set while the system is out of descriptors
    std::thread thread;
};

} // namespace Kest::Control
