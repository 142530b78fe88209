// Prints to standard output and standard error, for the agent and its libraries.
#pragma once

#include <functional>
#include <string_view>

namespace Lct {

/// `print` prints to standard output, `printError` to standard error. The arguments are those of `printf`.
/// Both cut the text to 4095 bytes and ignore failures. Any thread. If nobody reads the stream, a call blocks
/// for at most half a second and then drops its text. It blocks longer only if the thread that writes the
/// stream could not be created.
[[gnu::format(printf, 1, 2)]] void print(const char* format, ...);
[[gnu::format(printf, 1, 2)]] void printError(const char* format, ...);

/// Prints `what`, ": " and the description of `errno` to standard error, as perror does. Any thread; blocks
/// as `printError` does.
void printSystemError(const char* what);

/// From now on, text for standard output is passed to `sink` instead. Text for standard error is passed to
/// `sink` too if standard error is a terminal. An empty `sink` ends the redirection. `sink` is called with at
/// most 4096 bytes, on the threads that write the outputs, by one thread at a time; it must not block. Main
/// thread. First waits until earlier text is written, for at most 100 ms. The previous sink is not called
/// after this function returns.
void redirectOutput(std::function<void(std::string_view text)> sink);

/// Waits until all printed and logged text is written, for at most `milliseconds`. Returns false on timeout.
/// Any thread.
bool flushOutput(int milliseconds);

} // namespace Lct
