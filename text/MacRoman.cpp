#include "text/MacRoman.h"

#include "text/Utf8.h"

namespace Kest::Text {
namespace {

// The characters of the bytes from 0x80, as in Unicode's ROMAN.TXT: 0xDB is the euro sign, 0xF0 the private
// U+F8FF.
// clang-format off
constexpr std::u16string_view kUpperHalf =
    u"ÄÅÇÉÑÖÜáàâäãåçéè" // 80
    u"êëíìîïñóòôöõúùûü" // 90
    u"†°¢£§•¶ß®©™\u00B4\u00A8≠ÆØ" // A0
    u"∞±≤≥¥µ∂∑∏π∫ªºΩæø" // B0
    u"¿¡¬√ƒ≈∆«»…\u00A0ÀÃÕŒœ" // C0
    u"–—“”‘’÷◊ÿŸ\u2044€‹›ﬁﬂ" // D0
    u"‡·‚„‰ÂÊÁËÈÍÎÏÌÓÔ" // E0
    u"\uF8FFÒÚÛÙ\u0131\u02C6\u02DC\u00AF\u02D8\u02D9\u02DA\u00B8\u02DD\u02DB\u02C7"; // F0
// clang-format on
static_assert(kUpperHalf.size() == 128);

} // namespace

std::string macRomanToUtf8(std::string_view bytes)
{
    std::string text;
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        append(text, byte < 0x80 ? byte : kUpperHalf[byte - 0x80U]);
    }
    return text;
}

std::string utf8ToMacRoman(std::string_view text)
{
    std::string bytes;
    forEachCharacter(text, [&](const Character& character) {
        std::size_t upper = kUpperHalf.size();
        if (character.code <= 0xFFFF)
            upper = kUpperHalf.find(static_cast<char16_t>(character.code));
        if (character.code < 0x80)
            bytes += static_cast<char>(character.code);
        else
            bytes += upper < kUpperHalf.size() ? static_cast<char>(0x80 + upper) : '?';
    });
    return bytes;
}

} // namespace Kest::Text
