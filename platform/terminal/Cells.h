// Text in the cells of a terminal.
#pragma once

#include <string>

namespace Kest::Terminal {

/// What a screen can draw.
struct Glyphs {
    bool isUnicode = true; // otherwise ASCII alone
    const char* separator() const { return isUnicode ? "\u2500" : "-"; }
    const char* below() const { return isUnicode ? "\u25B8" : ">"; }
    const char* done() const { return isUnicode ? "\u2588" : "#"; }
    const char* toDo() const { return isUnicode ? "\u2591" : "."; }
    const char* cut() const { return isUnicode ? "\u2026" : "~"; }
};

/// Any text as it may be drawn: `printable`, and "?" for each character that the screen or the locale lacks.
std::string drawable(const std::string& text, Glyphs glyphs);

/// How many cells drawable text takes, by the process's locale: two for a wide character, none for an accent.
int cells(const std::string& text);

/// Drawable text cut or filled up with blanks to exactly that many cells.
std::string fitted(const std::string& text, int width, Glyphs glyphs);

/// A text so often.
std::string repeated(const char* text, int times);

/// For comparing without regard to case.
std::u32string folded(const std::string& text);

} // namespace Kest::Terminal
