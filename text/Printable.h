// Converts text and numbers from other processes to text for one line, without control characters.
#pragma once

#include <string>
#include <string_view>

namespace Kest::Text {

/// Returns `text` as valid UTF-8, with "?" for each control character and U+FFFD for each invalid byte.
std::string printable(std::string_view text);

/// Returns `text` as valid UTF-8, with \xNN (hexadecimal) for each byte of a control character and for each
/// invalid byte. A backslash is not escaped.
std::string escaped(std::string_view text);

/// Returns `text` as ASCII, with \xNN (hexadecimal) for each byte that is not a printable ASCII character. A
/// backslash is not escaped. Use it for Mac OS Roman, which terminals do not decode.
std::string escapedBytes(std::string_view text);

/// Returns the shortest decimal number that is read back as `value`; the number may have an exponent.
/// Exception: a whole number below 1e9 in magnitude is returned exactly, without an exponent. Infinities are
/// "inf" and "-inf"; NaN is "nan" or "-nan".
std::string printable(float value);

} // namespace Kest::Text
