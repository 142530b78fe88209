// Bytes and numbers as the simulator prints them.
#pragma once

#include <string>
#include <string_view>

namespace K3DHostSimulator {

/// A client's id or label in ASCII: every byte outside it, and every control byte, becomes \xNN, as the
/// scenario language writes it. Such a text holds Mac OS Roman, which is no terminal's encoding.
std::string printableBytes(std::string_view text);

/// A UTF-8 text on one line: only control bytes become \xNN.
std::string printableUtf8(std::string_view text);

/// The shortest decimal that reads back as `value`; a whole number has no decimals.
std::string printableNumber(float value);

} // namespace K3DHostSimulator
