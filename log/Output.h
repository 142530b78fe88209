// Standard output and standard error of the agent and its libraries.
#pragma once

namespace Lct {

/// Prints to standard output or standard error. Any thread. Never fails visibly, and blocks for at most half
/// a second when the reader of a stream is stuck; then text is dropped. A text of more than 4095 bytes is
/// cut.
[[gnu::format(printf, 1, 2)]] void print(const char* format, ...);
[[gnu::format(printf, 1, 2)]] void printError(const char* format, ...);

/// Prints `what`, ": " and the system's text for `errno` to standard error, as perror does.
void printSystemError(const char* what);

/// Waits until everything printed so far is written, at most `milliseconds`. Returns whether it is.
bool flushOutput(int milliseconds);

} // namespace Lct
