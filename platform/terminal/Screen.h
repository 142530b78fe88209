// Draws on a terminal and reads its keys and mouse events, with ncurses.
#pragma once

#include "platform/terminal/MenuScreen.h"
#include "platform/terminal/TerminalGuard.h"

#include <cstdio>
#include <cwchar>
#include <memory>
#include <optional>
#include <termios.h>
#include <vector>

namespace Kest::Terminal {

/// Converts a typed character to Enter, Esc, Backspace or `Key::character`. Other control characters, and
/// characters that the locale cannot encode, become `Key::other`.
Input inputOfCharacter(std::wint_t character);
/// Converts a KEY_ code of ncurses; unknown codes become `Key::other`.
Input inputOfKey(int code);
/// Converts the button state of a mouse event of ncurses. `line` is the line of the screen, counted from 0.
Input inputOfMouse(unsigned long buttons, int line);

/// The screen of a terminal. Create at most one per process. Draws through a copy of the descriptor of
/// standard output, so that standard output can be redirected after `open`. The destructor restores the
/// terminal. Main thread only.
class Screen {
public:
    /// Opens the screen. Returns null on failure, or if standard input or output is not a terminal that can
    /// be drawn on. Waits while the terminal accepts no output, for example after Ctrl-S. Blocks the signals
    /// SIGTERM, SIGINT and SIGHUP. Construct a `Posix::JobQueue` afterwards, also after a failure: its
    /// constructor unblocks them.
    static std::unique_ptr<Screen> open();
    ~Screen();
    Screen(const Screen&) = delete;
    Screen& operator=(const Screen&) = delete;

    Glyphs glyphs() const;
    Size size() const;
    /// Returns whether the terminal accepts output. If not, the terminal is stopped or its connection is
    /// stalled, and `draw` would block. To wait until the terminal accepts output, poll `descriptor`.
    bool canDraw() const;
    /// Returns the screen's descriptor of the terminal.
    int descriptor() const;
    void draw(const std::vector<ScreenLine>& lines);
    /// Returns the next key or mouse event; nullopt if none is waiting. After an Esc, waits up to 50 ms for
    /// the rest of a key's sequence.
    std::optional<Input> nextInput();
    /// Returns whether the terminal has hung up, so that no more input can be read.
    static bool hasHungUp();

    /// Adopts the current size of the terminal window, and makes the next `draw` redraw everything.
    void resize();
    /// Resets the terminal and stops the whole process group, as Ctrl-Z does. A shell script that waits for
    /// this process is therefore stopped too. Returns when the process is continued. If the process group is
    /// orphaned, returns at once, because the system does not stop such a group. In both cases, sends this
    /// process a SIGCONT before returning.
    void suspend();
    /// Prepares the terminal for drawing again. Call `resume` after a SIGCONT if the process is in the
    /// foreground, then call `draw`.
    void resume();
    /// Returns whether this process group is the terminal's foreground process group.
    bool isInForeground() const;

private:
    struct Curses; // the screen of ncurses

    Screen(FILE* terminal, const termios& modes);
    bool start();
    void disableSuspendKey() const;
    static void defineKeys();
    void startColours();
    void leave() const;
    void drawLine(int line, const ScreenLine& text) const;

    FILE* const output;
    const termios modesBefore; // restored by the destructor
    std::unique_ptr<Curses> curses;
    std::optional<TerminalGuard> guard;
    bool hasColours = false;
};

} // namespace Kest::Terminal
