// The parts of a measurement that need exact times; bench/measure does the rest. Each prints lines
// and returns an exit status; std::runtime_error when it cannot measure.
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

/// Starts a program beside a watcher of tray items, and prints "item MILLISECONDS NAME PID" when it
/// registers: the time since its start, its bus name, its process. Then prints each signal when it arrives,
/// with the clock's nanoseconds: "label TIME TEXT" for a changed row, "menu TIME" for any signal of a menu,
/// "plain TIME SENT" for one of sendPlainSignals. Returns when the program has ended.
int watch(const std::vector<std::string>& command);

/// Sends `count` signals at random intervals around 8 ms, with the time at which each was sent.
int sendPlainSignals(int count);

/// Prints, `count` times, the milliseconds from a click on a row of an item to the choice in the host's
/// segment, from a request at the control socket to it, and of what a choice consists of: "choice 1.5",
/// "request", "attach", "save", "unflushed".
int choiceToHost(int count, const std::string& item, int row);

} // namespace Kest::Bench
