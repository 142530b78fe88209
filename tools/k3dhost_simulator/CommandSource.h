// Supplies the commands of a scenario, from a file or from an open descriptor.
#pragma once

#include "tools/k3dhost_simulator/Failure.h"
#include "tools/k3dhost_simulator/Scenario.h"

#include <chrono>
#include <deque>
#include <optional>
#include <string>

namespace K3DHostSimulator {

/// Call `readFile` or `readFrom` once, or neither. Not synchronised.
class CommandSource {
public:
    /// Creates a source without commands.
    CommandSource() = default;

    /// Reads and checks all commands of a file at once. Fails if the file cannot be read or contains an
    /// invalid line.
    Failure readFile(const std::string& path);
    /// Makes `next` return the commands that arrive on a descriptor. Keep the descriptor open while this
    /// object is used.
    void readFrom(int descriptor) { input = descriptor; }

    /// Returns the next command; nullopt if none is available. If the next line is invalid, returns nullopt
    /// and sets `error` to one line. `error` must be empty before the call. Does not read the descriptor:
    /// `waitForInput` does.
    std::optional<Command> next(std::string& error);
    /// Returns whether `next` has returned all commands and the input of `readFrom` has ended or failed.
    /// Always false after `readFile`: the host keeps running after the last command.
    bool hasEnded() const { return endSeen && commands.empty() && unread.empty(); }
    /// Returns whether the next command of the file is "start"; false if there is none.
    bool beginsWithStart() const;

    /// Waits until the descriptor of `readFrom` has input, a signal handler has run or `timeLimit` has
    /// passed. Then reads up to 4096 bytes of the input, if any. If there is no descriptor or its input has
    /// ended, only waits.
    void waitForInput(std::chrono::milliseconds timeLimit);

private:
    int readPiece();
    std::optional<std::string> takeLine();
    std::optional<Command> parseNext(std::string& error);

    std::deque<Command> commands; // of a file
    int input = -1;               // a descriptor; -1 if there is none
    bool endSeen = false;
    std::string unread;
    int lineNumber = 0;
};

} // namespace K3DHostSimulator
