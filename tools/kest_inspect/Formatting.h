// Formats numbers and bytes of the session: names, meanings and UTF-8 text.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace KestInspect {

/// Returns the name of a parameter or a text of the agent's record; empty if it has none.
std::string_view parameterName(int number);
std::string_view textName(int number);

/// Returns the meaning of a parameter's value; empty if it is only a number.
std::string parameterMeaning(int number, float value);
/// Returns the meaning of the host's message; empty if the number has none.
std::string messageMeaning(std::int32_t number);

/// Returns the four letters of a client's type, as "KBUS", or its number if they are not printable ASCII.
std::string typeText(std::int32_t type);

/// Return a client's id or label, and a text of the agent's record, as valid UTF-8, whatever bytes they
/// contain.
std::string nameInUtf8(std::string_view bytes);
std::string textInUtf8(std::string_view bytes);

} // namespace KestInspect
