#include "text/Printable.h"

#include "text/Utf8.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace Kest::Text {

std::string printable(std::string_view text)
{
    std::string safe;
    forEachCharacter(text, [&](const Character& character) {
        safe += character.isControl() ? "?" : character.isValid ? character.bytes : "\xEF\xBF\xBD";
    });
    return safe;
}

std::string escaped(std::string_view text)
{
    std::string safe;
    forEachCharacter(text, [&](const Character& character) {
        const bool isText = character.isValid && !character.isControl();
        safe += isText ? std::string(character.bytes) : escapedBytes(character.bytes);
    });
    return safe;
}

std::string escapedBytes(std::string_view text)
{
    std::string safe;
    for (const char byte : text) {
        char code[8];
        const bool isText = byte >= 0x20 && byte < 0x7F;
        std::snprintf(code, sizeof code, isText ? "%c" : "\\x%02X", static_cast<unsigned char>(byte));
        safe += code;
    }
    return safe;
}

std::string printable(float value)
{
    char digits[64];
    if (std::fabs(value) < 1e9F && value == std::trunc(value)) {
        std::snprintf(digits, sizeof digits, "%.0f", static_cast<double>(value));
        return digits;
    }
    constexpr int kAlwaysExact = 9;
    for (int precision = 6; precision <= kAlwaysExact; ++precision) {
        std::snprintf(digits, sizeof digits, "%.*g", precision, static_cast<double>(value));
        if (std::strtof(digits, nullptr) == value)
            break;
    }
    return digits;
}

} // namespace Kest::Text
