// Restores the terminal when the process crashes.
#pragma once

#include <string>
#include <termios.h>

namespace Kest::Terminal {

/// Returns whether a terminal accepts output now. Returns false while the terminal is stopped by Ctrl-S or
/// its connection is stalled. Any thread, also in a signal handler.
bool isWritable(int terminal);

/// Returns whether the terminal type in the variable TERM is known and can position the cursor.
bool canMoveCursor(int terminal);

/// Returns the bytes that end drawing on the current terminal of ncurses. Write them unchanged. Main thread.
std::string resetSequence();

/// While a guard exists, SIGSEGV, SIGABRT, SIGBUS, SIGFPE and SIGILL call `restore` and then have the effect
/// that they had before the guard. One per process. Main thread only, except `restore`.
class TerminalGuard {
public:
    /// `terminal` must remain open while the guard exists. `restore` writes at most 512 bytes of
    /// `resetSequence` to it and sets the modes `before`.
    TerminalGuard(int terminal, const std::string& resetSequence, const termios& before);
    ~TerminalGuard();
    TerminalGuard(const TerminalGuard&) = delete;
    TerminalGuard& operator=(const TerminalGuard&) = delete;

    /// While false, `restore` does nothing. Set it to false while another program uses the terminal.
    static void setActive(bool isActive);
    /// Restores the terminal once; later calls do nothing. If the terminal accepts no output, restores only
    /// its modes. Never blocks. Any thread, also in a signal handler.
    static void restore();
};

} // namespace Kest::Terminal
