#include "tools/session_text/Text.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace SessionText {
namespace {

bool isControl(unsigned char byte) { return byte < 0x20 || byte == 0x7F; }

std::string code(char character)
{
    char digits[8];
    std::snprintf(digits, sizeof digits, "\\x%02X", static_cast<unsigned char>(character));
    return digits;
}

// The controls U+0080 to U+009F, of which some terminals take one for the start of an escape sequence.
bool isUpperControl(std::string_view text)
{
    return text.size() >= 2 && text[0] == '\xC2' && static_cast<unsigned char>(text[1]) < 0xA0;
}

} // namespace

std::string printableBytes(std::string_view text)
{
    std::string out;
    for (const char character : text) {
        const auto byte = static_cast<unsigned char>(character);
        out += isControl(byte) || byte >= 0x80 ? code(character) : std::string(1, character);
    }
    return out;
}

std::string printableUtf8(std::string_view text)
{
    std::string out;
    for (; !text.empty(); text.remove_prefix(1)) {
        if (isUpperControl(text)) {
            out += code(text[0]) + code(text[1]);
            text.remove_prefix(1);
        } else {
            out += isControl(static_cast<unsigned char>(text[0])) ? code(text[0]) : std::string(1, text[0]);
        }
    }
    return out;
}

std::string printableNumber(float value)
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

} // namespace SessionText
