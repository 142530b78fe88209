#include "app/Utf8.h"

namespace Kest::App {
namespace {

struct Lead {
    int length = 0;                    // bytes of the character; 0 when no character begins so
    unsigned char secondLowest = 0x80; // what the second byte may be
    unsigned char secondHighest = 0xBF;
};

Lead leadOf(unsigned char byte)
{
    if (byte < 0x80)
        return {1};
    if (byte >= 0xC2 && byte <= 0xDF)
        return {2};
    if (byte == 0xE0)
        return {3, 0xA0, 0xBF}; // below, two bytes would do
    if (byte == 0xED)
        return {3, 0x80, 0x9F}; // above are the surrogates
    if (byte >= 0xE1 && byte <= 0xEF)
        return {3};
    if (byte == 0xF0)
        return {4, 0x90, 0xBF};
    if (byte == 0xF4)
        return {4, 0x80, 0x8F};
    if (byte >= 0xF1 && byte <= 0xF3)
        return {4};
    return {};
}

// The bytes of the character at the start of a text that is not empty; 0 when there is none.
std::size_t characterLength(std::string_view text)
{
    const auto at = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const auto lead = leadOf(at(0));
    const auto length = static_cast<std::size_t>(lead.length);
    if (length == 0 || text.size() < length)
        return 0;
    if (length > 1 && (at(1) < lead.secondLowest || at(1) > lead.secondHighest))
        return 0;
    for (std::size_t i = 2; i < length; ++i)
        if ((at(i) & 0xC0U) != 0x80U)
            return 0;
    return length;
}

} // namespace

bool isUtf8(std::string_view text)
{
    while (!text.empty()) {
        const auto length = characterLength(text);
        if (length == 0)
            return false;
        text.remove_prefix(length);
    }
    return true;
}

std::string toUtf8(std::string_view text)
{
    std::string valid;
    while (!text.empty()) {
        const auto length = characterLength(text);
        valid += length == 0 ? "\xEF\xBF\xBD" : text.substr(0, length);
        text.remove_prefix(length == 0 ? 1 : length);
    }
    return valid;
}

std::string printable(std::string_view text)
{
    auto safe = toUtf8(text);
    for (std::size_t i = 0; i < safe.size(); ++i) {
        const auto byte = static_cast<unsigned char>(safe[i]);
        if (byte < 0x20 || byte == 0x7F)
            safe[i] = '?';
        else if (byte == 0xC2 && static_cast<unsigned char>(safe[i + 1]) < 0xA0) // U+0080 to U+009F
            safe.replace(i, 2, "?");
    }
    return safe;
}

} // namespace Kest::App
