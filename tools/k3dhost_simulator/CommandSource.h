// Supplies the commands of a scenario, from a file or from an open descriptor.
#pragma once

#include "tools/k3dhost_simulator/Failure.h"
#include "tools/k3dhost_simulator/Scenario.h"

#include <chrono>
#include <deque>
#include <optional>
#include <string>

namespace K3DHostSimulator {

/// Use one of `readFile` and `readFrom`. Not synchronised.
class CommandSource {
public:
    /// Creates a source without commands.
    CommandSource() = default;

    /// Reads and checks all commands of a file at once. Fails if the file cannot be read or contains an
    /// invalid line.
    Failure readFile(const std::string& path);
    /// Makes `next` return the commands that arrive on a descriptor. The caller closes the descriptor.
    void readFrom(int descriptor) { input = descriptor; }

    /// Returns the next command; nullopt if none has arrived. Also returns nullopt, with one line in `error`,
    /// if the next line is invalid; `error` must be empty before. After `readFrom`, call `sleep` to read more
    /// input.
    std::optional<Command> next(std::string& error);
    /// Returns whether the descriptor of `readFrom` has ended or failed and `next` has returned all commands.
    /// Always false for a file, because the host keeps running after the last command.
    bool hasEnded() const { return endSeen && commands.empty() && unread.empty(); }
    /// Returns whether the next command is "start". For a file only.
    bool beginsWithStart() const;

    /// Waits until input arrives, a signal arrives or `timeLimit` has passed, and reads the input.
    void waitForInput(std::chrono::milliseconds timeLimit);

private:
    int readPiece();
    std::optional<std::string> takeLine();
    std::optional<Command> parseNext(std::string& error);

    std::deque<Command> commands; // of a file
    int input = -1;               // -1 if there is none
    bool endSeen = false;
    std::string unread;
    int lineNumber = 0;
};

} // namespace K3DHostSimulator
