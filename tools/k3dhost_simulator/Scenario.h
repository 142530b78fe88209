// The scenario language: what the simulated host does, one command a line.
//
//   # ...                            a comment; it has a line of its own
//   wait 300ms | wait 2s
//   wait for LINE [within 5s]        until the agent has written what prints LINE; 10 s unless told
//   bus add ID NAME                  ID is one word, NAME the rest of the line; either may stand in
//   bus rename ID NAME               double quotes, with \xNN for any byte but NUL, \\ and \";
//   bus remove ID                    both have at most 64 bytes
//   message NUMBER                   posts a message to the agent
//   start [64|32] [without KestSettings]
//                                    new segments; a host that runs is stopped first
//   stop                             removes the segments
//   kill                             the simulator kills itself and leaves its segments
//   end                              stops the host and ends the simulator
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace K3DHostSimulator {

struct Command {
    enum class Kind { Wait, WaitFor, BusAdd, BusRemove, BusRename, Message, Start, Stop, Kill, End };

    Kind kind = Kind::End;
    int line = 0;                         // its number in the scenario, from 1
    std::chrono::milliseconds duration{}; // Wait: how long; WaitFor: at most
    std::string id;                       // of a bus
    std::string text;                     // a bus's name, or the line that is waited for
    float number = 0;                     // Message
    int wordSize = 64;                    // Start, in bits
    bool withSettings = true;             // Start: whether the agent's own record is registered
};

/// Neither a command nor an error: a blank line or a comment.
struct ParsedLine {
    std::optional<Command> command;
    std::string error; // "line 3: unknown command 'bsu'"
};

/// `text` is one line without its line feed, `number` its number.
ParsedLine parseLine(std::string_view text, int number);

} // namespace K3DHostSimulator
