// A client's end of a connection to the agent's control socket.
#pragma once

#include "backend/Descriptor.h"

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace Kest::Control {

/// A connection to an agent. Use it on one thread only.
class Client {
public:
    using Deadline = std::optional<std::chrono::steady_clock::time_point>; // nullopt: no limit

    /// Tries the socket in each of `folders`, in this order. Returns a connection to the first agent of this
    /// user that listens; nullopt if there is none.
    static std::optional<Client> connect(const std::vector<std::string>& folders);

    /// Sends `line` and a line feed. `line` itself must contain none. Blocks while the agent does not read.
    /// Returns false if the connection has ended or failed. The process ignores SIGPIPE from the first call
    /// on.
    bool send(const std::string& line);

    /// `line`: a line was received; `end`: the connection has ended or failed; `timeout`: the deadline has
    /// passed.
    enum class Received { line, end, timeout };
    /// Waits for the next line and stores it in `line`, without its line feed. Changes `line` only if a line
    /// was received.
    Received receive(std::string& line, Deadline deadline);

private:
    explicit Client(Settings::Descriptor connected) : socket(std::move(connected)) {}

    Settings::Descriptor socket;
    std::string input;
    std::size_t searched = 0; // length of the part of `input` that is known to contain no line feed
};

} // namespace Kest::Control
