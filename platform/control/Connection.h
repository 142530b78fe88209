// The connection of one client, on the server's thread.
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
    /// Returns the events to poll for.
    short events() const;

    /// Appends to the unsent output.
    void send(const std::string& text);
    /// Writes as much output as the socket accepts at once.
    void write();
    /// Reads available input, at most 4096 bytes.
    void read();
    /// Returns the next complete line, without its end; nullopt if there is none or the reply to the previous
    /// request is not sent yet.
    std::optional<std::string> nextLine();

    std::size_t unsentBytes() const { return output.size() - sent; }
    /// Returns since when the client has read no output; nullopt when all is sent.
    std::optional<Clock::time_point> stalledSince() const { return stalled; }
    bool hasTooLongLine() const;
    /// Returns whether the connection can be dropped.
    bool isFinished() const;

    const ClientId id;
    bool awaitsReply = false;
    bool watches = false;
    bool isClosing = false; // after the unsent output
    bool isDead = false;    // at once

private:
    bool canRequest() const { return !awaitsReply && !isClosing && unsentBytes() == 0; }

    Settings::Descriptor socket;
    std::string input;
    std::string output;
    std::size_t sent = 0; // of `output`
    bool inputEnded = false;
    std::optional<Clock::time_point> stalled;
};

} // namespace Kest::Control
