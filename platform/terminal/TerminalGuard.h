// Restores the terminal when the process crashes.
#pragma once

#include <string>
#include <termios.h>

namespace Kest::Terminal {

/// Returns whether a terminal accepts output now. Returns false while the terminal is stopped by Ctrl-S or
/// its connection is stalled. Any thread, also in a signal handler.
bool isWritable(int terminal);

/// Returns whether the terminal type in the environment variable TERM is known and can position the cursor.
/// `terminal` is a descriptor.
bool canMoveCursor(int terminal);

/// Returns the control sequences that reset the current terminal of ncurses after drawing. ncurses must have
/// been started. Write the bytes to the terminal unchanged. Main thread.
std::string resetSequence();

/// While a guard exists, SIGSEGV, SIGABRT, SIGBUS, SIGFPE and SIGILL call `restore` and then have the effect
/// that they had before the guard. Create at most one at a time. Main thread only, except `restore`.
class TerminalGuard {
public:
    /// `terminal` must remain open while the guard exists. `restore` writes the first 512 bytes of
    /// `resetSequence` to the terminal and sets the terminal's modes to `before`.
    TerminalGuard(int terminal, const std::string& resetSequence, const termios& before);
    ~TerminalGuard();
    TerminalGuard(const TerminalGuard&) = delete;
    TerminalGuard& operator=(const TerminalGuard&) = delete;

    /// Makes the guard active or inactive; initially active. While the guard is inactive, `restore` does
    /// nothing. Make the guard inactive while another program uses the terminal.
    static void setActive(bool isActive);
    /// Restores the terminal and makes the guard inactive, so that later calls do nothing. If the terminal
    /// accepts no output, restores only its modes. Never blocks. Any thread, also in a signal handler.
    static void restore();
};

} // namespace Kest::Terminal
