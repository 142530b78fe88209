// Standard output and standard error of the agent and its libraries.
#pragma once

#include <functional>
#include <string_view>

namespace Lct {

/// Prints to standard output or standard error. Cuts a text after 4095 bytes. Ignores failures. Any thread;
/// blocks for at most half a second when nothing reads the stream, then drops text.
[[gnu::format(printf, 1, 2)]] void print(const char* format, ...);
[[gnu::format(printf, 1, 2)]] void printError(const char* format, ...);

/// Prints `what`, ": " and the system's text for `errno` to standard error, as perror does.
void printSystemError(const char* what);

/// Passes printed text to `sink` instead of standard output, and instead of standard error if that is a
/// terminal. An empty `sink` restores both; the previous one is not called after the return. `sink` gets at
/// most 4096 bytes at a time, one call at a time, on the threads of the outputs; it must not block. Main
/// thread; blocks for at most 100 ms until earlier text is written.
void redirectOutput(std::function<void(std::string_view text)> sink);

/// Waits until all printed text is written, at most `milliseconds`. Returns false on timeout.
bool flushOutput(int milliseconds);

} // namespace Lct
