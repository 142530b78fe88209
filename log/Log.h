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
/// are as for `printf`. A message or line that does not fit 511 bytes is cut; its line feed stays. Of lines
/// that repeat one a minute is written, with the number of those left out since. Any thread; never blocks.
/// Failures of the streams or the system log are ignored.
[[gnu::format(printf, 3, 4)]] void Log(eLogLevel level, const char* tag, const char* format, ...);

/// The same for the result of what the user has just asked for: written however often it repeats.
[[gnu::format(printf, 3, 4)]] void LogAnswer(eLogLevel level, const char* tag, const char* format, ...);

/// Collects the messages that LogAnswer gets on this thread while it lives, for whoever asked; they are
/// logged as well. Of two that live at once, the later one collects.
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
