// The client's end of the control socket.
#pragma once

#include "backend/Descriptor.h"

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace Kest::Control {

/// One thread only.
class Client {
public:
    using Deadline = std::optional<std::chrono::steady_clock::time_point>; // nullopt: no limit

    /// Connects to the first agent of this user that accepts at its socket in one of the folders. nullopt if
    /// there is none.
    static std::optional<Client> connect(const std::vector<std::string>& folders);

    /// Sends one line, given without its line feed. Returns false if the agent has closed the connection.
    bool send(const std::string& line);

    enum class Received { line, end, timeout };
    /// Waits for the next line and stores it in `line` without its line feed.
    Received receive(std::string& line, Deadline deadline);

private:
    explicit Client(Settings::Descriptor connected) : socket(std::move(connected)) {}

    Settings::Descriptor socket;
    std::string input;
    std::size_t searched = 0; // bytes of `input` without a line feed
};

} // namespace Kest::Control
