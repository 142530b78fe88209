// Prints to standard output and standard error, for the agent and its libraries.
#pragma once

#include <functional>
#include <string_view>

namespace Lct {

/// `print` prints to standard output, `printError` to standard error. The arguments are those of `printf`.
/// Both cut the text to 4095 bytes and ignore failures. Any thread. If nothing reads the stream and its
/// buffer (64 KB) is full, calls wait for at most half a second in total; later text is dropped until the
/// buffer is empty. Without the thread that writes the stream, a call may block longer.
[[gnu::format(printf, 1, 2)]] void print(const char* format, ...);
[[gnu::format(printf, 1, 2)]] void printError(const char* format, ...);

/// Prints `what`, ": " and the description of `errno` to standard error, as perror does. Any thread; blocks
/// as `printError` does.
void printSystemError(const char* what);

/// Passes later text for standard output to `sink` instead of the stream. Does the same for standard error if
/// it is a terminal. An empty `sink` ends the redirection. Before the change, waits at most 100 ms for
/// earlier text to be written. The previous sink is not called after this function returns. The threads that
/// write the outputs call `sink`, one thread at a time, with at most 4096 bytes; `sink` must not block. Main
/// thread.
void redirectOutput(std::function<void(std::string_view text)> sink);

/// Waits, for at most `milliseconds`, until all printed and logged text is written. Returns false on timeout.
/// Any thread.
bool flushOutput(int milliseconds);

} // namespace Lct
