// The parts of bench/measure that need exact times. Functions throw std::runtime_error if they cannot
// measure. Functions that return int return the exit status.
#pragma once

#include <chrono>
#include <string>
#include <systemd/sd-bus.h>
#include <vector>

namespace Kest::Bench {

using Clock = std::chrono::steady_clock; // the same in all processes, and in Python's time.monotonic_ns

inline double milliseconds(Clock::duration time)
{
    return std::chrono::duration<double, std::milli>(time).count();
}

constexpr char kPlain[] = "com.kestronics.bench.Plain";

sd_bus* connect();

/// Serves as the watcher of tray items and starts a program. When the program registers its item, prints
/// "item MILLISECONDS NAME PID": the time since the start, the item's bus name, the process id. Prints a line
/// when a signal arrives: "menu TIME" for each signal of a menu, "label TIME TEXT" for each label in such a
/// signal, and "plain TIME SENT" for each signal of `sendPlainSignals`. TIME and SENT are in nanoseconds of
/// `Clock`. Returns when the program has ended.
int watch(const std::vector<std::string>& command);

/// Sends `count` signals at random intervals of 4 to 12 ms. Each signal contains the time when it was sent.
int sendPlainSignals(int count);

/// Prints five durations in ms `count` times, for example "choice 1.5". "choice" is the time from a click on
/// a row of a tray item until the host's segment contains the choice. "request" is the same from a request at
/// the control socket. "attach" is an attachment of the segment. "save" and "unflushed" are writes of a file
/// as long as the settings file, with and without fsync.
int choiceToHost(int count, const std::string& item, int row);

} // namespace Kest::Bench
