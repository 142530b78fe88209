// Conversion of bus names, which are Mac OS Roman in the host's records and UTF-8 in the menu.
#pragma once

#include <string>
#include <string_view>

namespace Kest::Text {

/// Every byte is a character, so `utf8ToMacRoman` returns the same bytes.
std::string macRomanToUtf8(std::string_view bytes);

/// Replaces a character that Mac OS Roman does not have by "?".
std::string utf8ToMacRoman(std::string_view text);

} // namespace Kest::Text
