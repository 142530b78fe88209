#include "text/Utf8.h"

namespace Kest::Text {
namespace {

constexpr std::size_t kMaxLength = 4;                                       // bytes of a character
constexpr char32_t kMinCode[kMaxLength + 1] = {0, 0, 0x80, 0x800, 0x10000}; // by length

unsigned byteAt(std::string_view text, std::size_t i) { return static_cast<unsigned char>(text[i]); }

bool isContinuation(unsigned byte) { return (byte & 0xC0U) == 0x80; }

std::size_t lengthOf(unsigned lead)
{
    if (lead < 0x80)
        return 1;
    return lead < 0xC0 || lead > 0xF7 ? 0 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
}

} // namespace

Character firstCharacter(std::string_view text)
{
    const Character none{text.substr(0, 1)};
    const auto lead = byteAt(text, 0);
    const auto length = lengthOf(lead);
    if (length == 0 || text.size() < length)
        return none;
    char32_t code = length == 1 ? lead : lead & (0x7FU >> length);
    for (std::size_t i = 1; i < length; ++i) {
        if (!isContinuation(byteAt(text, i)))
            return none;
        code = code << 6U | (byteAt(text, i) & 0x3FU);
    }
    const bool isSurrogate = code >= 0xD800 && code <= 0xDFFF;
    if (code < kMinCode[length] || code > 0x10FFFF || isSurrogate)
        return none;
    return {text.substr(0, length), code, true};
}

bool isUtf8(std::string_view text)
{
    bool isValid = true;
    forEachCharacter(text, [&](const Character& character) { isValid = isValid && character.isValid; });
    return isValid;
}

std::string toUtf8(std::string_view text)
{
    std::string valid;
    forEachCharacter(text, [&](const Character& character) {
        if (character.isValid)
            valid += character.bytes;
        else
            append(valid, kReplacementCharacter);
    });
    return valid;
}

void append(std::string& text, char32_t code)
{
    if (code < 0x80) {
        text += static_cast<char>(code);
        return;
    }
    const std::size_t length = code < kMinCode[3] ? 2 : code < kMinCode[4] ? 3 : 4;
    const auto leadMark = 0xF00U >> length & 0xFFU;
    text += static_cast<char>(leadMark | code >> 6 * (length - 1));
    for (std::size_t left = length - 1; left-- > 0;)
        text += static_cast<char>(0x80U | (code >> 6 * left & 0x3FU));
}

std::size_t wholeCharacters(std::string_view text, std::size_t limit)
{
    std::size_t begin = limit; // of the character that contains the byte at the limit
    while (begin > 0 && limit - begin < kMaxLength - 1 && isContinuation(byteAt(text, begin)))
        --begin;
    return byteAt(text, begin) >= 0xC0 ? begin : limit;
}

} // namespace Kest::Text
