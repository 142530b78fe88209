// Text and numbers of other processes as they are printed: in one line, without control characters.
#pragma once

#include <string>
#include <string_view>

namespace Kest::Text {

/// Returns valid UTF-8: "?" in place of each control character, U+FFFD in place of each byte that belongs to
/// no character.
std::string printable(std::string_view text);

/// Returns valid UTF-8 in which no byte is lost: each byte of a control character, and each that belongs to
/// no character, becomes \xNN.
std::string escaped(std::string_view text);

/// Returns ASCII: every byte that is not a printable ASCII character becomes \xNN. For Mac OS Roman, which no
/// terminal decodes.
std::string escapedBytes(std::string_view text);

/// Returns the shortest decimal that is read back as `value`; a whole number below 1e9 has no decimals.
std::string printable(float value);

} // namespace Kest::Text
