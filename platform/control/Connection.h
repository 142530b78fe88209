// The server's end of the connection to one client.
#pragma once

#include "backend/Descriptor.h"
#include "platform/control/Outbox.h"

#include <chrono>
#include <optional>
#include <string>

namespace Kest::Control {

using Clock = std::chrono::steady_clock;

/// Only for the thread of `ServerThread`. No function blocks.
class Connection {
public:
    Connection(ClientId clientId, Settings::Descriptor opened) : id(clientId), socket(std::move(opened)) {}

    int descriptor() const { return socket.get(); }
    /// Returns the events to wait for with poll.
    short events() const;

    /// Appends `text` to the unsent output. Call `write` to send it.
    void send(const std::string& text);
    /// Writes as much of the unsent output as the socket accepts at once. Sets `isDead` if the connection has
    /// failed.
    void write();
    /// Reads at most 4096 bytes of the available input. Sets `isDead` if the connection has failed.
    void read();
    /// Removes and returns the next complete line of the input, without its line feed. Returns nullopt if
    /// there is no complete line or the line is longer than `kMaxRequestBytes` (Request.h). Also returns
    /// nullopt while `awaitsReply` or `isClosing` is true, and while output is unsent.
    std::optional<std::string> nextLine();

    std::size_t unsentBytes() const { return output.size() - sent; }
    /// While output is unsent, returns when the last `write` sent bytes or when output became unsent,
    /// whichever is later. Otherwise returns nullopt.
    std::optional<Clock::time_point> stalledSince() const { return stalled; }
    /// Returns whether the next line of the input, complete or not, is longer than `kMaxRequestBytes`.
    bool isNextLineTooLong() const;
    /// Returns whether the connection must be closed now. This is so in three cases:
    /// - `isDead` is true.
    /// - `isClosing` is true, all output is sent, and `awaitsReply` is false.
    /// - The client sends no more and does not watch, and no request, reply or output is pending.
    bool shouldClose() const;

    const ClientId id;
    bool awaitsReply = false; // a request has no reply yet
    bool watches = false;     // the client gets events
    bool isClosing = false;   // to be closed when all output is sent
    bool isDead = false;      // to be closed at once

private:
    bool canRequest() const { return !awaitsReply && !isClosing && unsentBytes() == 0; }

    Settings::Descriptor socket;
    std::string input;
    std::string output;
    std::size_t sent = 0;    // bytes of `output` that are written
    bool inputEnded = false; // the client sends no more
    std::optional<Clock::time_point> stalled;
};

} // namespace Kest::Control
