#include "platform/terminal/ScreenKeys.h"

#include <climits>
#include <cstdlib>
#include <curses.h>

namespace Kest::Terminal {
namespace {

// The library's mouse version 1, which macOS has, knows four buttons and reports the wheel's downward step as
// a position.
constexpr mmask_t kWheelDown = NCURSES_MOUSE_VERSION > 1 ? NCURSES_MOUSE_MASK(5, NCURSES_BUTTON_PRESSED)
                                                         : REPORT_MOUSE_POSITION;

Input plain(Key key) { return {.key = key, .text = {}}; }

} // namespace

Input inputOfCharacter(std::wint_t character)
{
    switch (character) {
    case '\r':
    case '\n':
        return plain(Key::enter);
    case 0x1B:
        return plain(Key::escape);
    case 0x08:
    case 0x7F:
        return plain(Key::backspace);
    default:
        break;
    }
    char bytes[MB_LEN_MAX];
    const int count = std::wctomb(bytes, static_cast<wchar_t>(character));
    if (character < 0x20 || count <= 0)
        return plain(Key::other);
    return {.key = Key::character, .text = std::string(bytes, static_cast<std::size_t>(count))};
}

Input inputOfKey(int code)
{
    switch (code) {
    case KEY_UP:
        return plain(Key::up);
    case KEY_DOWN:
        return plain(Key::down);
    case KEY_LEFT:
        return plain(Key::left);
    case KEY_RIGHT:
        return plain(Key::right);
    case KEY_PPAGE:
        return plain(Key::pageUp);
    case KEY_NPAGE:
        return plain(Key::pageDown);
    case KEY_HOME:
        return plain(Key::home);
    case KEY_END:
        return plain(Key::end);
    case KEY_ENTER:
        return plain(Key::enter);
    case KEY_BACKSPACE:
    case KEY_DC:
        return plain(Key::backspace);
    default:
        return plain(Key::other);
    }
}

unsigned long mouseEvents() { return BUTTON1_PRESSED | BUTTON4_PRESSED | kWheelDown; }

Input inputOfMouse(unsigned long buttons, int line)
{
    if ((buttons & BUTTON1_PRESSED) != 0)
        return {.key = Key::click, .text = {}, .line = line};
    if ((buttons & BUTTON4_PRESSED) != 0)
        return plain(Key::wheelUp);
    if ((buttons & kWheelDown) != 0)
        return plain(Key::wheelDown);
    return plain(Key::other);
}

} // namespace Kest::Terminal
