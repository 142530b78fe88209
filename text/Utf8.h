// UTF-8 decoding: other processes send any bytes, desktops and terminals accept only valid text.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace Kest::Text {

constexpr char32_t kReplacementCharacter = 0xFFFD;

struct Character {
    std::string_view bytes;
    char32_t code = kReplacementCharacter;
    bool isValid = false;
    bool isControl() const { return code < 0x20 || (code >= 0x7F && code < 0xA0); }
};

/// Returns the first character of a text that is not empty. If no character begins there, returns the first
/// byte as U+FFFD, not valid. Over-long forms, surrogates and values above U+10FFFF are not characters.
Character firstCharacter(std::string_view text);

/// Calls `use` with each character.
template <typename Use>
void forEachCharacter(std::string_view text, Use use)
{
    while (!text.empty()) {
        const auto character = firstCharacter(text);
        use(character);
        text.remove_prefix(character.bytes.size());
    }
}

bool isUtf8(std::string_view text);

/// Returns the text with U+FFFD for each invalid byte.
std::string toUtf8(std::string_view text);

/// Appends a character; `code` is not a surrogate.
void append(std::string& text, char32_t code);

/// Returns how many of the first `limit` bytes of a longer text are whole characters; `limit` if the text is
/// not UTF-8 there.
std::size_t wholeCharacters(std::string_view text, std::size_t limit);

} // namespace Kest::Text
