#include "platform/terminal/Screen.h"

#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <curses.h>
#include <fcntl.h>
#include <langinfo.h>
#include <map>
#include <poll.h>
#include <string_view>
#include <sys/ioctl.h>
#include <unistd.h>

namespace Kest::Terminal {
namespace {

constexpr int kEscapeDelay = 50; // milliseconds; what follows an Esc later is a separate key
constexpr short kRedPair = 1;

std::string_view valueOf(const char* variable)
{
    const char* const value = std::getenv(variable);
    return value == nullptr ? "" : value;
}

bool canBeDrawnOn()
{
    const auto name = valueOf("TERM");
    return isatty(STDIN_FILENO) != 0 && isatty(STDOUT_FILENO) != 0 && !name.empty() && name != "dumb" &&
           canMoveCursor(STDOUT_FILENO);
}

// Blocks the ending signals until the main loop handles and unblocks them: an agent that is killed before
// leaves the terminal's modes set. First waits until the terminal takes output, because opening the screen
// would wait while it is stopped.
void blockEndingSignals()
{
    pollfd terminal{STDOUT_FILENO, POLLOUT, 0};
    while (poll(&terminal, 1, -1) < 0 && errno == EINTR)
        ;
    sigset_t ending;
    sigemptyset(&ending);
    for (const int signal : {SIGTERM, SIGINT, SIGHUP})
        sigaddset(&ending, signal);
    pthread_sigmask(SIG_BLOCK, &ending, nullptr);
}

attr_t attributesOf(const ScreenLine& line, bool hasColours)
{
    const attr_t selected = line.selected ? A_REVERSE : A_NORMAL;
    switch (line.style) {
    case Style::plain:
        return selected;
    case Style::title:
        return A_BOLD;
    case Style::greyed:
        return selected | A_DIM;
    case Style::red:
        return hasColours ? selected | static_cast<attr_t>(COLOR_PAIR(kRedPair)) : selected;
    case Style::status:
        return A_REVERSE;
    }
    return A_NORMAL;
}

// Mouse version 1 of ncurses, as on macOS, has four buttons and reports a downward step of the wheel as a
// position.
constexpr mmask_t kWheelDown = NCURSES_MOUSE_VERSION > 1 ? NCURSES_MOUSE_MASK(5, NCURSES_BUTTON_PRESSED)
                                                         : REPORT_MOUSE_POSITION;

constexpr mmask_t kMouseEvents = BUTTON1_PRESSED | BUTTON4_PRESSED | kWheelDown;

Input plain(Key key) { return {.key = key}; }

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
    static const std::map<int, Key> kKeys = {
        {KEY_UP, Key::up},
        {KEY_DOWN, Key::down},
        {KEY_LEFT, Key::left},
        {KEY_RIGHT, Key::right},
        {KEY_PPAGE, Key::pageUp},
        {KEY_NPAGE, Key::pageDown},
        {KEY_HOME, Key::home},
        {KEY_END, Key::end},
        {KEY_ENTER, Key::enter},
        {KEY_DC, Key::backspace},
        {KEY_BACKSPACE, Key::backspace},
    };
    const auto found = kKeys.find(code);
    return plain(found == kKeys.end() ? Key::other : found->second);
}

Input inputOfMouse(unsigned long buttons, int line)
{
    if ((buttons & BUTTON1_PRESSED) != 0)
        return {.key = Key::click, .line = line};
    if ((buttons & BUTTON4_PRESSED) != 0)
        return plain(Key::wheelUp);
    if ((buttons & kWheelDown) != 0)
        return plain(Key::wheelDown);
    return plain(Key::other);
}

struct Screen::Curses {
    SCREEN* screen = nullptr;
};

std::unique_ptr<Screen> Screen::open()
{
    if (!canBeDrawnOn())
        return nullptr;
    blockEndingSignals();
    termios modes{};
    const int terminal = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    FILE* const output = terminal < 0 ? nullptr : fdopen(terminal, "w");
    if (output == nullptr || tcgetattr(terminal, &modes) != 0) {
        if (terminal >= 0)
            close(terminal);
        return nullptr;
    }
    std::unique_ptr<Screen> opened(new Screen(output, modes));
    return opened->start() ? std::move(opened) : nullptr;
}

Screen::Screen(FILE* terminal, const termios& modes)
    : output(terminal), modesBefore(modes), curses(std::make_unique<Curses>())
{}

bool Screen::start()
{
    curses->screen = newterm(nullptr, output, stdin);
    if (curses->screen == nullptr)
        return false;
    guard.emplace(fileno(output), resetSequence(), modesBefore);
    set_term(curses->screen);
    cbreak();
    noecho();
    nonl();
    keypad(stdscr, TRUE);
    defineKeys();
    nodelay(stdscr, TRUE);
    set_escdelay(kEscapeDelay);
    curs_set(0);
    disableSuspendKey();
    startColours();
    mousemask(kMouseEvents, nullptr);
    mouseinterval(0); // reports a press at once, not after a possible click
    return true;
}

// Disables the terminal's suspend key, which would stop the whole process group at once. A shell that then
// takes the terminal stops this process while it leaves the screen, and so it would stop a second time when
// it is continued.
void Screen::disableSuspendKey() const
{
    termios modes{};
    if (tcgetattr(fileno(output), &modes) != 0)
        return;
    modes.c_cc[VSUSP] = _POSIX_VDISABLE;
    tcsetattr(fileno(output), TCSANOW, &modes);
    def_prog_mode();
}

// Terminals send cursor keys as one of two sequences, and not always as the requested one.
void Screen::defineKeys()
{
    const struct {
        const char* bytes;
        int code;
    } keys[] = {{"\x1B[A", KEY_UP},   {"\x1B[B", KEY_DOWN}, {"\x1B[C", KEY_RIGHT},
                {"\x1B[D", KEY_LEFT}, {"\x1B[H", KEY_HOME}, {"\x1B[F", KEY_END}};
    for (const auto& key : keys)
        define_key(key.bytes, key.code);
}

void Screen::startColours()
{
    if (!valueOf("NO_COLOR").empty() || !has_colors())
        return;
    hasColours =
        start_color() == OK && use_default_colors() == OK && init_pair(kRedPair, COLOR_RED, -1) == OK;
}

Screen::~Screen()
{
    if (curses->screen != nullptr) {
        leave();
        if (isInForeground()) // otherwise the modes are those of another program
            tcsetattr(fileno(output), TCSANOW, &modesBefore);
        guard.reset();
        delscreen(curses->screen);
    }
    if (canDraw())
        std::fclose(output);
    else
        close(fileno(output)); // drops what ncurses has not written yet
}

// endwin would wait for a terminal that takes no output.
void Screen::leave() const
{
    if (!isendwin() && canDraw())
        endwin();
}

bool Screen::canDraw() const { return isWritable(fileno(output)); }

int Screen::descriptor() const { return fileno(output); }

Glyphs Screen::glyphs() const { return {std::strcmp(nl_langinfo(CODESET), "UTF-8") == 0}; }

Size Screen::size() const { return {getmaxy(stdscr), getmaxx(stdscr)}; }

void Screen::draw(const std::vector<ScreenLine>& lines)
{
    werase(stdscr);
    for (std::size_t i = 0; i < lines.size(); ++i)
        drawLine(static_cast<int>(i), lines[i]);
    wnoutrefresh(stdscr);
    doupdate();
}

void Screen::drawLine(int line, const ScreenLine& text) const
{
    wattrset(stdscr, static_cast<int>(attributesOf(text, hasColours)));
    mvwaddstr(stdscr, line, 0, text.text.c_str());
    wattrset(stdscr, static_cast<int>(A_NORMAL));
}

std::optional<Input> Screen::nextInput()
{
    wint_t code = 0;
    const int kind = wget_wch(stdscr, &code);
    if (kind == ERR)
        return std::nullopt;
    const auto suspendKey = modesBefore.c_cc[VSUSP];
    if (kind != KEY_CODE_YES && code == suspendKey && suspendKey != _POSIX_VDISABLE)
        return Input{.key = Key::suspend};
    if (kind != KEY_CODE_YES)
        return inputOfCharacter(code);
    if (code != KEY_MOUSE)
        return inputOfKey(static_cast<int>(code));
    MEVENT event{};
    return getmouse(&event) == OK ? inputOfMouse(event.bstate, event.y) : Input{};
}

bool Screen::hasHungUp()
{
    pollfd terminal{STDIN_FILENO, POLLIN, 0};
    return poll(&terminal, 1, 0) < 0 || (terminal.revents & (POLLHUP | POLLERR | POLLNVAL)) != 0;
}

void Screen::resize()
{
    winsize window{};
    if (ioctl(fileno(output), TIOCGWINSZ, &window) == 0 && window.ws_row > 0 && window.ws_col > 0)
        resizeterm(window.ws_row, window.ws_col);
    clearok(curscr, TRUE);
}

void Screen::suspend()
{
    leave();
    TerminalGuard::setActive(false);
    struct sigaction stop {};
    stop.sa_handler = SIG_DFL;
    struct sigaction before {};
    sigaction(SIGTSTP, &stop, &before);
    kill(0, SIGTSTP); // returns when continued, or at once if nothing could continue the process group
    sigaction(SIGTSTP, &before, nullptr);
    raise(SIGCONT); // makes the loop call `resume` in both cases
}

void Screen::resume()
{
    if (!isendwin())
        endwin(); // another program may have set other modes; the next drawing sets all of them
    TerminalGuard::setActive(true);
    resize();
}

bool Screen::isInForeground() const { return tcgetpgrp(fileno(output)) == getpgrp(); }

} // namespace Kest::Terminal
