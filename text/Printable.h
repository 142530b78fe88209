// Prints text and numbers of other processes in one line, without control characters.
#pragma once

#include <string>
#include <string_view>

namespace Kest::Text {

/// Returns valid UTF-8, with "?" for each control character and U+FFFD for each invalid byte.
std::string printable(std::string_view text);

/// Returns valid UTF-8 without losing a byte: each byte of a control character and each invalid byte becomes
/// \xNN.
std::string escaped(std::string_view text);

/// Returns ASCII, with \xNN for every byte that is not a printable ASCII character. For Mac OS Roman, which
/// terminals do not decode.
std::string escapedBytes(std::string_view text);

/// Returns the shortest decimal that reads back as `value`, without decimals for a whole number below 1e9.
std::string printable(float value);

} // namespace Kest::Text
