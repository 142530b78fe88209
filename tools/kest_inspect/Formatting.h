// Converts numbers and bytes of the session to names, meanings and UTF-8 text.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace KestInspect {

/// `parameterName` returns the name of a parameter, `textName` that of a text; empty if it has no name.
/// `number` is the index of the parameter or text in the agent's record.
std::string_view parameterName(int number);
std::string_view textName(int number);

/// Returns the meaning of a parameter's value, for example the name of a speaker configuration; empty if
/// there is none.
std::string parameterMeaning(int number, float value);
/// Returns the text for a status number of the host; empty if there is no text for the number.
std::string messageMeaning(std::int32_t number);

/// Returns a client's type as four characters, for example "KBUS". If one of them is not printable ASCII,
/// returns the type as a decimal number.
std::string typeText(std::int32_t type);

/// Return valid UTF-8 for any bytes. `nameInUtf8` converts a client's id or label from Mac OS Roman;
/// `textInUtf8` replaces each invalid byte by U+FFFD.
std::string nameInUtf8(std::string_view bytes);
std::string textInUtf8(std::string_view bytes);

} // namespace KestInspect
