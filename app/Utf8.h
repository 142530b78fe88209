// Text of other processes may be anything; desktops and terminals take only real UTF-8.
#pragma once

#include <string>
#include <string_view>

namespace Kest::App {

/// Strictly: no over-long forms, no surrogates, nothing beyond U+10FFFF.
bool isUtf8(std::string_view text);

/// The same text with U+FFFD in place of each byte that belongs to no character.
std::string toUtf8(std::string_view text);

/// Returns text of another process as it may be sent to a terminal: valid UTF-8, with "?" in place of each
/// control character.
std::string printable(std::string_view text);

} // namespace Kest::App
