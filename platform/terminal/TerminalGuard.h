// Leaves the terminal in order when the process is killed by its own fault.
#pragma once

#include <string>
#include <termios.h>

namespace Kest::Terminal {

/// Returns whether a terminal takes output now; false while it is stopped by Ctrl-S or its connection is
/// stalled. Any thread, signal handlers too.
bool takesOutput(int terminal);

/// Whether the terminal that TERM names is known and can be drawn on.
bool canPlaceCursor(int terminal);

/// What ends drawing on the terminal that is drawn on now: text to write to it as it is.
std::string farewell();

/// One for each process. While it lives, SIGSEGV, SIGABRT, SIGBUS, SIGFPE and SIGILL put the terminal back
/// and then have the effect that they had before. Main thread only, but for `restore`.
class TerminalGuard {
public:
    /// `terminal` stays open as long as the guard lives; `farewell` is what to write to it.
    TerminalGuard(int terminal, const std::string& farewell, const termios& before);
    ~TerminalGuard();
    TerminalGuard(const TerminalGuard&) = delete;
    TerminalGuard& operator=(const TerminalGuard&) = delete;

    /// Off while somebody else has the terminal.
    static void setActive(bool isActive);
    /// Puts the terminal back, once; its modes only where it takes no output. Never blocks. Any thread,
    /// signal handlers too.
    static void restore();
};

} // namespace Kest::Terminal
