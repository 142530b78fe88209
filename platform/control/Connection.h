// One client, as the server's thread knows it.
#pragma once

#include "backend/Descriptor.h"
#include "platform/control/Outbox.h"

#include <chrono>
#include <optional>
#include <string>

namespace Kest::Control {

using Clock = std::chrono::steady_clock;

/// Server's thread only. Never blocks.
class Connection {
public:
    Connection(ClientId clientId, Settings::Descriptor opened) : id(clientId), socket(std::move(opened)) {}

    int descriptor() const { return socket.get(); }
    /// What poll should wait for.
    short events() const;

    /// Adds to what is sent.
    void send(const std::string& text);
    /// Sends what the client takes at once.
    void write();
    /// Reads what has arrived.
    void read();
    /// Returns the next whole line, without its end, while the client may ask: one request at a time, and the
    /// next when its reply has been taken.
    std::optional<std::string> nextLine();

    std::size_t unsentBytes() const { return output.size() - sent; }
    /// Since when the client has taken nothing of what is sent; nullopt when all is sent.
    std::optional<Clock::time_point> stalledSince() const { return stalled; }
    bool hasTooLongLine() const;
    /// Whether nothing will happen any more.
    bool isOver() const;

    const ClientId id;
    bool awaitsReply = false;
    bool watches = false;
    bool isClosing = false; // after what is unsent
    bool isDead = false;    // at once

private:
    bool mayAsk() const { return !awaitsReply && !isClosing && unsentBytes() == 0; }

    Settings::Descriptor socket;
    std::string input;
    std::string output;
    std::size_t sent = 0; // of `output`
    bool inputEnded = false;
    std::optional<Clock::time_point> stalled;
};

} // namespace Kest::Control
