// The logger of the agent and its libraries.
#pragma once

#include <string>
#include <vector>

namespace Lct {

enum eLogLevel {
    eLogError,   // printed as "<ERRO>"
    eLogWarning, // printed as "<WARN>"
};

/// Writes the line "2026-03-01 14:05:09.004211 <ERRO> tag message", which begins with the local time, to
/// standard error, to standard output and to the system log. `tag` names the operation that logs the message;
/// `format` and the other arguments are those of `printf`. Cuts the line to 511 bytes, including its line
/// feed. Any thread.
/// Messages whose `format` is the same pointer form a group. Omits the message if, within the last minute,
/// its group has written an equal message or a total of 20 messages. The number of omitted messages is added
/// to the next line of the group.
/// Each output has a buffer of 64 KB and a thread that writes it. If nothing reads an output and its buffer
/// is full, calls wait for at most half a second in total; later lines for this output are dropped until its
/// buffer is empty. If the thread could not be created, a call may block longer. Ignores failures of the
/// outputs.
[[gnu::format(printf, 3, 4)]] void Log(eLogLevel level, const char* tag, const char* format, ...);

/// Writes a line as `Log` does, but never omits a message. Use it for the result of a user's action.
[[gnu::format(printf, 3, 4)]] void LogAnswer(eLogLevel level, const char* tag, const char* format, ...);

/// Collects the messages that the constructing thread passes to `LogAnswer` while this object exists. The
/// messages are logged too. If a thread has several such objects, only the newest one collects; destroy the
/// newest one first.
class CollectedAnswers {
public:
    CollectedAnswers();
    ~CollectedAnswers();
    CollectedAnswers(const CollectedAnswers&) = delete;
    CollectedAnswers& operator=(const CollectedAnswers&) = delete;

    /// Returns the messages in the order of the calls, without time, level and tag; at most 511 bytes each.
    const std::vector<std::string>& messages() const { return collected; }

private:
    friend void LogAnswer(eLogLevel, const char*, const char*, ...);
    std::vector<std::string> collected;
    CollectedAnswers* const before;
};

} // namespace Lct
