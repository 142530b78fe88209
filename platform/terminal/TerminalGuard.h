// Restores the terminal when the process crashes.
#pragma once

#include <string>
#include <termios.h>

namespace Kest::Terminal {

/// Returns whether a terminal takes output now; false while it is stopped by Ctrl-S or its connection is
/// stalled. Any thread, signal handlers too.
bool isWritable(int terminal);

/// Returns whether the terminal type in TERM is known and can be drawn on.
bool canPlaceCursor(int terminal);

/// Returns the bytes that end drawing on the current terminal; to be written unchanged.
std::string resetSequence();

/// While it exists, SIGSEGV, SIGABRT, SIGBUS, SIGFPE and SIGILL restore the terminal and then have their
/// previous effect. One per process. Main thread only, except `restore`.
class TerminalGuard {
public:
    /// `terminal` must stay open while the guard exists. `resetSequence` is written to it, `before` are its
    /// modes to restore.
    TerminalGuard(int terminal, const std::string& resetSequence, const termios& before);
    ~TerminalGuard();
    TerminalGuard(const TerminalGuard&) = delete;
    TerminalGuard& operator=(const TerminalGuard&) = delete;

    /// Set to false while another program has the terminal.
    static void setActive(bool isActive);
    /// Restores the terminal, once; if it takes no output, only its modes. Never blocks. Any thread, signal
    /// handlers too.
    static void restore();
};

} // namespace Kest::Terminal
