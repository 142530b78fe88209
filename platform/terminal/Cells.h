// Measures, cuts and pads text for the character cells of a terminal.
#pragma once

#include <string>

namespace Kest::Terminal {

/// The symbols for drawing on a screen.
struct Glyphs {
    bool isUnicode = true; // false: the screen can draw ASCII only
    const char* separator() const { return isUnicode ? "\u2500" : "-"; }
    const char* submenuArrow() const { return isUnicode ? "\u25B8" : ">"; }
    const char* done() const { return isUnicode ? "\u2588" : "#"; }
    const char* remaining() const { return isUnicode ? "\u2591" : "."; }
    const char* ellipsis() const { return isUnicode ? "\u2026" : "~"; }
};

/// Returns `text` in valid UTF-8, with "?" instead of each control character and of each character that the
/// screen or the locale cannot draw.
std::string drawable(const std::string& text, Glyphs glyphs);

/// Returns the width in cells of a text that `drawable` has returned. The process's locale defines the width
/// of each character: a wide character counts 2, a combining accent 0.
int cellWidth(const std::string& text);

/// Returns `text` cut or padded with blanks to exactly `width` cells. A cut text ends with an ellipsis.
/// `text` must be a result of `drawable`. Returns an empty text if `width` is below 1.
std::string fitToWidth(const std::string& text, int width, Glyphs glyphs);

/// Returns `text` repeated `times` times.
std::string repeated(const char* text, int times);

/// Returns the characters of `text` in lower case, with "?" instead of each control character, for
/// comparisons that ignore case.
std::u32string folded(const std::string& text);

} // namespace Kest::Terminal
