// Conversion of bus names, which are Mac OS Roman in the host's records and UTF-8 in the menu.
#pragma once

#include <string>
#include <string_view>

namespace Kest::Text {

/// Converts Mac OS Roman, in which every byte is a character, to UTF-8. `utf8ToMacRoman` converts the result
/// back to the same bytes.
std::string macRomanToUtf8(std::string_view bytes);

/// Converts UTF-8 to Mac OS Roman. Replaces each character that Mac OS Roman lacks, and each invalid byte, by
/// "?".
std::string utf8ToMacRoman(std::string_view text);

} // namespace Kest::Text
