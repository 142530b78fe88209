#include "platform/terminal/Cells.h"

#include "platform/terminal/TextMenu.h"

#include <algorithm>
#include <cwchar>
#include <cwctype>
#include <string_view>

namespace Kest::Terminal {
namespace {

struct Character {
    std::string_view bytes;
    char32_t code = 0;
    int width() const { return wcwidth(static_cast<wchar_t>(code)); } // -1 for what the locale lacks
};

// The first character of text that is UTF-8 and not empty.
Character firstOf(std::string_view text)
{
    const auto lead = static_cast<unsigned char>(text.front());
    if (lead < 0x80)
        return {text.substr(0, 1), lead};
    const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    char32_t code = lead & (0x7FU >> length);
    for (std::size_t i = 1; i < length; ++i)
        code = (code << 6U) | (static_cast<unsigned char>(text[i]) & 0x3FU);
    return {text.substr(0, length), code};
}

template <typename Use>
void forEachCharacter(std::string_view text, Use use)
{
    while (!text.empty()) {
        const auto character = firstOf(text);
        use(character);
        text.remove_prefix(character.bytes.size());
    }
}

} // namespace

std::string drawable(const std::string& text, Glyphs glyphs)
{
    std::string drawn;
    forEachCharacter(printable(text), [&](const Character& character) {
        const bool canBeDrawn = character.code < 0x80 || (glyphs.isUnicode && character.width() >= 0);
        drawn += canBeDrawn ? character.bytes : "?";
    });
    return drawn;
}

int cells(const std::string& text)
{
    int sum = 0;
    forEachCharacter(text, [&sum](const Character& character) { sum += std::max(character.width(), 0); });
    return sum;
}

std::string fitted(const std::string& text, int width, Glyphs glyphs)
{
    if (width <= 0)
        return {};
    const int whole = cells(text);
    if (whole <= width)
        return text + std::string(static_cast<std::size_t>(width - whole), ' ');

    std::string start;
    int used = 0;
    bool isFull = false;
    forEachCharacter(text, [&](const Character& character) {
        const int wide = std::max(character.width(), 0);
        isFull = isFull || used + wide > width - 1;
        if (isFull)
            return;
        used += wide;
        start += character.bytes;
    });
    return start + glyphs.cut() + std::string(static_cast<std::size_t>(width - 1 - used), ' ');
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
    forEachCharacter(printable(text), [&letters](const Character& character) {
        letters += static_cast<char32_t>(std::towlower(static_cast<wint_t>(character.code)));
    });
    return letters;
}

} // namespace Kest::Terminal
