// The terminal as a screen: the only part that knows ncurses.
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

/// A typed character, control characters too.
Input inputOfCharacter(std::wint_t character);
/// A KEY_ code of the library.
Input inputOfKey(int code);
/// A button's state, and the line of the screen that it is on.
Input inputOfMouse(unsigned long buttons, int line);

/// One for each process, main thread only. Has a descriptor of its own to the terminal, so that standard
/// output may go elsewhere meanwhile. The terminal is in order again when it is gone.
class Screen {
public:
    /// Null unless standard input and output are a terminal that can be drawn on.
    static std::unique_ptr<Screen> open();
    ~Screen();
    Screen(const Screen&) = delete;
    Screen& operator=(const Screen&) = delete;

    Glyphs glyphs() const;
    Size size() const;
    /// False while the terminal is stopped or stalled: then `draw` would block. Poll `descriptor` for output.
    bool canDraw() const;
    int descriptor() const;
    void draw(const std::vector<ScreenLine>& lines);
    /// What has been pressed; nothing when there is no more for now. May take 50 ms after an Esc.
    std::optional<Input> nextInput();
    /// Whether nothing more can come: the terminal has gone.
    static bool hasHungUp();

    /// The window may have another size. To be drawn anew afterwards, as after `resume`.
    void resize();
    /// Gives the terminal back, then stops the process group, as Ctrl-Z does in other programs: a shell
    /// script that waits for this process is stopped with it. The process gets a SIGCONT when it is
    /// continued, or at once where nothing could continue it.
    void suspend();
    /// Takes the terminal again, to be called on SIGCONT in the foreground.
    void resume();
    bool isInForeground() const;

private:
    struct Curses; // the library's screen

    Screen(FILE* terminal, const termios& modes);
    bool start();
    void takeSuspendKey() const;
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
