#include "tools/k3dhost_simulator/Text.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace K3DHostSimulator {
namespace {

bool isControl(unsigned char byte) { return byte < 0x20 || byte == 0x7F; }

template <typename Predicate>
std::string escaped(std::string_view text, Predicate mustEscape)
{
    std::string out;
    for (const char character : text) {
        const auto byte = static_cast<unsigned char>(character);
        if (!mustEscape(byte)) {
            out += character;
            continue;
        }
        char code[8];
        std::snprintf(code, sizeof code, "\\x%02X", byte);
        out += code;
    }
    return out;
}

} // namespace

std::string printableBytes(std::string_view text)
{
    return escaped(text, [](unsigned char byte) { return isControl(byte) || byte >= 0x80; });
}

std::string printableUtf8(std::string_view text) { return escaped(text, isControl); }

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

} // namespace K3DHostSimulator
