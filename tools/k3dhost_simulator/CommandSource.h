// Where a scenario's commands come from: a file that is read and checked at once, or lines as they arrive.
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
    /// No command ever comes.
    CommandSource() = default;

    /// Takes all commands of a file. Fails when it cannot be read or when one of its lines is wrong.
    Failure readFile(const std::string& path);
    /// Takes lines from a descriptor as they arrive. The descriptor stays the caller's.
    void readFrom(int descriptor) { input = descriptor; }

    /// The next command; nothing when there is none at the moment, or when the next line is wrong: then
    /// `error` says so, and nothing more comes.
    std::optional<Command> next(std::string& error);
    /// Whether the descriptor's end was reached and everything before it was taken.
    bool hasEnded() const { return endSeen && commands.empty() && unread.empty(); }
    /// Whether the first command is a start.
    bool beginsWithStart() const;

    /// Sleeps until something arrives, at most for this time.
    void sleep(std::chrono::milliseconds atMost);

private:
    int readPiece();
    std::optional<std::string> takeLine();
    std::optional<Command> parseNext(std::string& error);

    std::deque<Command> commands; // of a file
    int input = -1;               // no more is read once its end was seen
    bool endSeen = false;
    std::string unread;
    int lineNumber = 0;
};

} // namespace K3DHostSimulator
