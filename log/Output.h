// Standard output and standard error of the agent and its libraries.
#pragma once

#include <functional>
#include <string_view>

namespace Lct {

/// Prints to standard output or standard error. Any thread. Never fails visibly, and blocks for at most half
/// a second when the reader of a stream is stuck; then text is dropped. A text of more than 4095 bytes is
/// cut.
[[gnu::format(printf, 1, 2)]] void print(const char* format, ...);
[[gnu::format(printf, 1, 2)]] void printError(const char* format, ...);

/// Prints `what`, ": " and the system's text for `errno` to standard error, as perror does.
void printSystemError(const char* what);

/// Passes what is printed from now on to `sink` instead of standard output, and instead of standard error
/// where that is a terminal; an empty one ends that, and no call follows its return. `sink` gets at most 4096
/// bytes at a time, one call at a time, on the threads of the outputs; it must not block. Main thread; blocks
/// for at most 100 ms, until what was printed before is written.
void redirectOutput(std::function<void(std::string_view text)> sink);

/// Waits until everything printed so far is written, at most `milliseconds`. Returns whether it is.
bool flushOutput(int milliseconds);

} // namespace Lct
