// The source of a scenario's commands: a file, read and checked at once, or lines as they arrive.
#pragma once

#include "tools/k3dhost_simulator/Failure.h"
#include "tools/k3dhost_simulator/Scenario.h"

#include <chrono>
#include <deque>
#include <optional>
#include <string>

namespace K3DHostSimulator {

class CommandSource {
public:
    /// Creates a source without commands.
    CommandSource() = default;

    /// Reads all commands of a file. Fails if it cannot be read or a line is invalid.
    Failure readFile(const std::string& path);
    /// Reads lines from a descriptor as they arrive. The caller keeps the descriptor.
    void readFrom(int descriptor) { input = descriptor; }

    /// Returns the next command; nullopt if none has arrived, or the next line is invalid: then `error` is
    /// set.
    std::optional<Command> next(std::string& error);
    /// Returns whether the end of the descriptor was reached and all commands before it were returned.
    bool hasEnded() const { return endSeen && commands.empty() && unread.empty(); }
    bool beginsWithStart() const;

    /// Sleeps until input arrives, at most for this time.
    void sleep(std::chrono::milliseconds atMost);

private:
    int readPiece();
    std::optional<std::string> takeLine();
    std::optional<Command> parseNext(std::string& error);

    std::deque<Command> commands; // of a file
    int input = -1;               // not read after its end
    bool endSeen = false;
    std::string unread;
    int lineNumber = 0;
};

} // namespace K3DHostSimulator
