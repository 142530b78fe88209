// Decodes UTF-8. Other processes may send any bytes; desktops and terminals accept only valid UTF-8.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace Kest::Text {

constexpr char32_t kReplacementCharacter = 0xFFFD;

/// One character of a text. An invalid byte counts as one character with the code U+FFFD.
struct Character {
    std::string_view bytes; // points into the text
    char32_t code = kReplacementCharacter;
    bool isValid = false;
    bool isControl() const { return code < 0x20 || (code >= 0x7F && code < 0xA0); }
};

/// Returns the first character of `text`. If `text` does not begin with a valid character, returns the first
/// byte as an invalid character. `text` must not be empty. Over-long forms, surrogates and values above
/// U+10FFFF are invalid.
Character firstCharacter(std::string_view text);

/// Calls `use` with each character and each invalid byte of `text`, in order.
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

/// Returns `text` with U+FFFD for each invalid byte.
std::string toUtf8(std::string_view text);

/// Appends a character in UTF-8. `code` must be at most U+10FFFF and must not be a surrogate.
void append(std::string& text, char32_t code);

/// Returns the greatest length, at most `limit` bytes, to which `text` can be cut without splitting a
/// character. `text` must have more than `limit` bytes. The result for invalid UTF-8 is `limit` or up to 3
/// bytes less.
std::size_t wholeCharacters(std::string_view text, std::size_t limit);

} // namespace Kest::Text
