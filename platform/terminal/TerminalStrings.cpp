// Control sequences of the terminal. A separate file, because term.h defines many names as macros.
#include "platform/terminal/TerminalGuard.h"

#include <cstdint>
#include <curses.h>
#include <term.h>

namespace Kest::Terminal {
namespace {

std::string collected;

int collect(int byte)
{
    collected += static_cast<char>(byte);
    return byte;
}

// Returns null for a capability that the terminal lacks.
const char* capability(const char* name)
{
    std::string changeable = name; // macOS declares the parameter without const
    const char* const text = tigetstr(changeable.data());
    return reinterpret_cast<std::intptr_t>(text) == -1 ? nullptr : text;
}

} // namespace

bool canMoveCursor(int terminal)
{
    int outcome = 0;
    if (setupterm(nullptr, terminal, &outcome) != OK)
        return false;
    const bool can = capability("cup") != nullptr;
    del_curterm(cur_term);
    return can;
}

std::string resetSequence()
{
    collected.clear();
    if (capability("kmous") != nullptr)
        collected = "\x1B[?1006l\x1B[?1000l"; // ends mouse reports
    for (const char* name : {"sgr0", "op", "rmkx", "cnorm", "rmcup"})
        if (const char* const text = capability(name))
            tputs(text, 1, collect);
    return collected;
}

} // namespace Kest::Terminal
