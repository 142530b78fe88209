// The system's one diagnostic logger.
#pragma once

#include <string>
#include <vector>

namespace Lct {

enum eLogLevel {
    eLogError,   // printed as "<ERRO>"
    eLogWarning, // printed as "<WARN>"
};

/// Writes one line, "2026-03-01 14:05:09.004211 <ERRO> tag message", to the standard error stream, the
/// standard output stream and the system log. `tag` names the reporting operation; `format` and what follows
/// are as for `printf`. A message or line that does not fit 511 bytes is cut; its line feed stays. Repeated
/// lines are written once a minute, with the number of those omitted. Any thread; never blocks. Failures of
/// the streams or the system log are ignored.
[[gnu::format(printf, 3, 4)]] void Log(eLogLevel level, const char* tag, const char* format, ...);

/// Writes the result of a user's action: the same line, however often it repeats.
[[gnu::format(printf, 3, 4)]] void LogAnswer(eLogLevel level, const char* tag, const char* format, ...);

/// Collects the messages that this thread passes to LogAnswer during its life; they are logged too. If two
/// exist, the later one collects.
class CollectedAnswers {
public:
    CollectedAnswers();
    ~CollectedAnswers();
    CollectedAnswers(const CollectedAnswers&) = delete;
    CollectedAnswers& operator=(const CollectedAnswers&) = delete;

    /// Without time and tag, at most 511 bytes each.
    const std::vector<std::string>& messages() const { return collected; }

private:
    friend void LogAnswer(eLogLevel, const char*, const char*, ...);
    std::vector<std::string> collected;
    CollectedAnswers* const before;
};

} // namespace Lct
