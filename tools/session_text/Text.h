// Bytes and numbers of the session as the tools print them.
#pragma once

#include <string>
#include <string_view>

namespace SessionText {

/// A client's id or label in ASCII: every byte outside it, and every control byte, becomes \xNN, as the
/// simulator's scenario language writes it. Such a text holds Mac OS Roman, which is no terminal's encoding.
std::string printableBytes(std::string_view text);

/// A UTF-8 text on one line that a terminal takes for text: only control characters become \xNN, byte by
/// byte.
std::string printableUtf8(std::string_view text);

/// The shortest decimal that reads back as `value`; a whole number has no decimals.
std::string printableNumber(float value);

} // namespace SessionText
