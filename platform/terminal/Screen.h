// Draws on a terminal and reads its keys, with ncurses.
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

/// Converts a typed character, which may be a control character.
Input inputOfCharacter(std::wint_t character);
/// Converts a KEY_ code of ncurses.
Input inputOfKey(int code);
/// Converts the button state of a mouse event; `line` is its line of the screen.
Input inputOfMouse(unsigned long buttons, int line);

/// A terminal's screen; one per process. Has its own descriptor of the terminal, so that standard output can
/// be redirected. Its destructor restores the terminal. Main thread only.
class Screen {
public:
    /// Returns null unless standard input and output are a terminal that can be drawn on.
    static std::unique_ptr<Screen> open();
    ~Screen();
    Screen(const Screen&) = delete;
    Screen& operator=(const Screen&) = delete;

    Glyphs glyphs() const;
    Size size() const;
    /// Returns false while the terminal is stopped or stalled: `draw` would then block. Poll `descriptor` for
    /// output.
    bool canDraw() const;
    int descriptor() const;
    void draw(const std::vector<ScreenLine>& lines);
    /// Returns the next key or click; nullopt if none is waiting. May take 50 ms after an Esc.
    std::optional<Input> nextInput();
    /// Returns whether the terminal has hung up, so that no more input will arrive.
    static bool hasHungUp();

    /// Adopts the size of the window, which may have changed. Call `draw` afterwards, as after `resume`.
    void resize();
    /// Releases the terminal, then stops the process group, as Ctrl-Z does in other programs: a shell script
    /// that waits for this process is stopped with it. The process gets a SIGCONT when it is continued, or at
    /// once if nothing could continue it.
    void suspend();
    /// Acquires the terminal again. Call it on SIGCONT, in the foreground.
    void resume();
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
    const termios modesBefore;
    std::unique_ptr<Curses> curses;
    std::optional<TerminalGuard> guard;
    bool hasColours = false;
};

} // namespace Kest::Terminal
