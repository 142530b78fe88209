#include "platform/control/ServerThread.h"

#include "backend/SignalsBlocked.h"
#include "platform/control/ItemJson.h"

#include <algorithm>
#include <cerrno>
#include <unistd.h>
#include <utility>

namespace Kest::Control {
namespace {

constexpr auto kRetryAccept = std::chrono::seconds(1);
constexpr std::size_t kWakeUp = 0; // indices of polled descriptors
constexpr std::size_t kListener = 1;
constexpr std::size_t kFirstClient = 2;

bool isOutOfDescriptors(int failure) { return failure == EMFILE || failure == ENFILE || failure == ENOMEM; }

} // namespace

ServerThread::ServerThread(ListeningSocket listening, Outbox& replies, std::atomic<int>& watching,
                           Handler requestHandler, ServerLimits serverLimits)
    : socket(std::move(listening)), outbox(replies), watchers(watching), handler(std::move(requestHandler)),
      limits(std::move(serverLimits))
{
    const SignalsBlocked blocked; // includes SIGPIPE of a closed connection
    thread = std::thread([this] { run(); });
}

ServerThread::~ServerThread()
{
    stopping = true;
    outbox.add({});
    thread.join();
}

void ServerThread::run()
{
    while (!stopping) {
        auto waiting = polled();
        if (poll(waiting.data(), static_cast<nfds_t>(waiting.size()), timeout()) < 0 && errno != EINTR)
            break;
        if (waiting[kWakeUp].revents != 0)
            deliver(outbox.take());
        auto ready = waiting.begin() + kFirstClient;
        for (auto& [id, client] : clients)
            serve(client, (ready++)->revents);
        dropFinished();
        if (waiting[kListener].revents != 0)
            acceptClients();
    }
    deliver(outbox.take());
    clients.clear();
}

std::vector<pollfd> ServerThread::polled() const
{
    const bool accepts = !acceptAfter || *acceptAfter <= Clock::now();
    std::vector<pollfd> all{{outbox.descriptor(), POLLIN, 0},
                            {accepts ? socket.descriptor() : -1, POLLIN, 0}};
    for (const auto& [id, client] : clients)
        all.push_back({client.descriptor(), client.events(), 0});
    return all;
}

// Returns the timeout for poll, in ms; -1 unless a client does not read or the system lacks descriptors.
int ServerThread::timeout() const
{
    std::optional<Clock::time_point> end = acceptAfter;
    for (const auto& [id, client] : clients)
        if (const auto since = client.stalledSince())
            end = std::min(end.value_or(Clock::time_point::max()), *since + limits.maxStallTime);
    if (!end)
        return -1;
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(*end - Clock::now()).count();
    return static_cast<int>(std::max<decltype(left)>(left, 0));
}

void ServerThread::acceptClients()
{
    acceptAfter.reset();
    auto connection = acceptConnection(socket.descriptor());
    if (!connection) {
        if (isOutOfDescriptors(errno))
            acceptAfter = Clock::now() + kRetryAccept;
        return;
    }
    if (limits.peerUser(connection.get()) != geteuid())
        return;
    if (clients.size() >= limits.clients) {
        Connection refused(kAllWatchers, std::move(connection));
        refused.send(errorReply(std::to_string(limits.clients) + " clients are connected, the maximum"));
        return refused.write();
    }
    const auto id = ++lastClient;
    auto& client = clients.try_emplace(id, id, std::move(connection)).first->second;
    client.send(greeting());
    client.write();
}

void ServerThread::deliver(const std::deque<Message>& messages)
{
    for (const auto& message : messages)
        deliver(message);
}

void ServerThread::deliver(const Message& message)
{
    if (message.client == kAllWatchers) {
        for (auto& [id, client] : clients) {
            if (!client.watches || message.text.empty())
                continue;
            client.isDead |= client.unsentBytes() > limits.maxUnsentBytes;
            client.send(message.text);
            client.write();
        }
        return;
    }
    const auto found = clients.find(message.client);
    if (found == clients.end()) {
        watchers -= message.startsWatch ? 1 : 0;
        return;
    }
    auto& client = found->second;
    watchers -= message.startsWatch && client.watches ? 1 : 0; // was watching already
    client.watches |= message.startsWatch;
    client.awaitsReply = false;
    client.send(message.text);
    client.write();
    takeRequest(client);
}

// Reads the remaining input of a disconnected client before dropping it.
void ServerThread::serve(Connection& client, short ready)
{
    if ((ready & POLLOUT) != 0)
        client.write();
    if ((ready & POLLIN) != 0)
        client.read();
    else if ((ready & (POLLHUP | POLLERR | POLLNVAL)) != 0)
        client.isDead = true;
    const auto since = client.stalledSince();
    client.isDead |= since && Clock::now() - *since >= limits.maxStallTime;
    takeRequest(client);
}

void ServerThread::takeRequest(Connection& client)
{
    while (const auto line = client.nextLine()) {
        if (line->find_first_not_of(" \t\r") == std::string::npos)
            continue;
        if (const auto [request, error] = parseRequest(*line); request) {
            client.awaitsReply = true;
            handler(client.id, *request);
        } else {
            client.send(errorReply(error));
            client.write();
        }
    }
    if (!client.isClosing && client.isNextLineTooLong()) {
        client.isClosing = true;
        client.send(errorReply("the request is longer than " + std::to_string(kMaxRequestBytes) + " bytes"));
        client.write();
    }
}

void ServerThread::dropFinished()
{
    std::erase_if(clients, [this](const auto& entry) {
        const auto& client = entry.second;
        if (!client.shouldClose())
            return false;
        watchers -= client.watches ? 1 : 0;
        return true;
    });
}

} // namespace Kest::Control
