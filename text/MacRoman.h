// Bus names are Mac OS Roman in the host's records and UTF-8 in the menu.
#pragma once

#include <string>
#include <string_view>

namespace Kest::Text {

/// Every byte has a character, so the way back gives the same bytes.
std::string macRomanToUtf8(std::string_view bytes);

/// A character that Mac OS Roman does not have becomes "?".
std::string utf8ToMacRoman(std::string_view text);

} // namespace Kest::Text
