// What numbers and bytes of the session mean.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace KestInspect {

/// The name of a parameter or a text of the agent's record; empty where it has none.
std::string_view parameterName(int number);
std::string_view textName(int number);

/// What a parameter's value stands for, where that is more than a number; else empty.
std::string parameterMeaning(int number, float value);
/// What the host's message says to the agent; empty for a number that says nothing.
std::string messageMeaning(std::int32_t number);

/// "KBUS": the four letters of a client's type, or its number where they are none.
std::string typeText(std::int32_t type);

/// A client's id or label, and a text of the agent's record, as UTF-8: any bytes give valid text.
std::string nameInUtf8(std::string_view bytes);
std::string textInUtf8(std::string_view bytes);

} // namespace KestInspect
