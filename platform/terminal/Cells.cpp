#include "platform/terminal/Cells.h"

#include "text/Printable.h"
#include "text/Utf8.h"

#include <algorithm>
#include <cwchar>
#include <cwctype>

namespace Kest::Terminal {
namespace {

using Text::Character;
using Text::forEachCharacter;

// Returns -1 for a character that the locale lacks.
int widthOf(const Character& character) { return wcwidth(static_cast<wchar_t>(character.code)); }

} // namespace

std::string drawable(const std::string& text, Glyphs glyphs)
{
    std::string drawn;
    forEachCharacter(Text::printable(text), [&](const Character& character) {
        const bool canBeDrawn = character.code < 0x80 || (glyphs.isUnicode && widthOf(character) >= 0);
        drawn += canBeDrawn ? character.bytes : "?";
    });
    return drawn;
}

int cellWidth(const std::string& text)
{
    int sum = 0;
    forEachCharacter(text, [&sum](const Character& character) { sum += std::max(widthOf(character), 0); });
    return sum;
}

std::string fitToWidth(const std::string& text, int width, Glyphs glyphs)
{
    if (width <= 0)
        return {};
    const int whole = cellWidth(text);
    if (whole <= width)
        return text + std::string(static_cast<std::size_t>(width - whole), ' ');

    std::string start;
    int used = 0;
    bool isFull = false;
    forEachCharacter(text, [&](const Character& character) {
        const int wide = std::max(widthOf(character), 0);
        isFull = isFull || used + wide > width - 1;
        if (isFull)
            return;
        used += wide;
        start += character.bytes;
    });
    return start + glyphs.ellipsis() + std::string(static_cast<std::size_t>(width - 1 - used), ' ');
}

std::string repeated(const char* text, int times)
{
    std::string row;
    for (int i = 0; i < times; ++i)
        row += text;
    return row;
}

std::u32string folded(const std::string& text)
{
    std::u32string letters;
    forEachCharacter(Text::printable(text), [&letters](const Character& character) {
        letters += static_cast<char32_t>(std::towlower(static_cast<wint_t>(character.code)));
    });
    return letters;
}

} // namespace Kest::Terminal
