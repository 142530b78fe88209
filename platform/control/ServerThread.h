// The thread that serves the control socket. The thread never blocks on a client or on the main thread.
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

/// Limits of the server, and the function that returns the user of a client's socket. Connections of users
/// other than the agent's are closed without a reply.
struct ServerLimits {
    std::size_t clients = 16; // connections at the same time; further clients get only an error
    // A client that watches is disconnected if an event is due while more bytes than this are unsent to it.
    std::size_t maxUnsentBytes = 1'048'576;
    // A client is disconnected if it reads nothing for this time although output is unsent.
    std::chrono::milliseconds maxStallTime{10'000};
    std::function<std::optional<uid_t>(int)> peerUser = Control::peerUser;
};

/// Owns the thread, which sleeps while it has nothing to do. Create and destroy this object on the main
/// thread.
class ServerThread {
public:
    /// Called on the server's thread with each valid request. Must cause one reply to be added to the outbox,
    /// at once or later, on any thread.
    using Handler = std::function<void(ClientId, const Request&)>;

    /// Starts the thread. Throws std::system_error if that fails. `replies` and `watching` must outlive this
    /// object. `watching` counts the clients that watch. The handler must increment it for each `watch`
    /// request. This class decrements it when a client that watches is disconnected, and if a client repeats
    /// the request.
    ServerThread(ListeningSocket listening, Outbox& replies, std::atomic<int>& watching,
                 Handler requestHandler, ServerLimits serverLimits);
    /// Sends as much of the output as is possible without blocking, disconnects all clients and ends the
    /// thread.
    ~ServerThread();
    ServerThread(const ServerThread&) = delete;
    ServerThread& operator=(const ServerThread&) = delete;

private:
    using Connections = std::map<ClientId, Connection>;

    void run();
    std::vector<pollfd> polled() const;
    int timeout() const; // for poll, in milliseconds; -1: none
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
    std::optional<Clock::time_point> acceptAfter; // set after `accept` found no free descriptor
    std::thread thread;
};

} // namespace Kest::Control
