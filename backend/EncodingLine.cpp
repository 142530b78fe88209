#include "backend/EncodingLine.h"

#include <algorithm>
#include <charconv>

namespace Kest::Settings {
namespace {

constexpr std::size_t kMaxValueBytes = 1023;

constexpr bool isBlank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

/// Scans a line step by step; a step that does not match returns no value and does not advance.
class Scanner {
public:
    explicit Scanner(std::string_view text) : rest(text) {}

    bool literal(std::string_view expected)
    {
        if (!rest.starts_with(expected))
            return false;
        rest.remove_prefix(expected.size());
        return true;
    }

    Scanner& blanks()
    {
        while (!rest.empty() && isBlank(rest.front()))
            rest.remove_prefix(1);
        return *this;
    }

    std::optional<std::int32_t> number()
    {
        blanks();
        // from_chars does not accept a plus sign.
        const bool plus = rest.size() > 1 && rest[0] == '+' && rest[1] != '-';
        const char* begin = rest.data() + (plus ? 1 : 0);
        std::int32_t value = 0;
        const auto [end, error] = std::from_chars(begin, rest.data() + rest.size(), value);
        if (error != std::errc{})
            return std::nullopt;
        rest.remove_prefix(static_cast<std::size_t>(end - rest.data()));
        return value;
    }

    /// Returns the text after "name:" and blanks, if the line continues with that.
    std::optional<std::string_view> field(std::string_view name) const
    {
        Scanner ahead = *this;
        if (!ahead.literal(name))
            return std::nullopt;
        return ahead.blanks().rest;
    }

private:
    std::string_view rest;
};

} // namespace

std::optional<EncodingLine> parseEncodingLine(std::string_view line)
{
    Scanner scanner(line);
    if (!scanner.literal("pid:"))
        return std::nullopt;
    const auto pid = scanner.number();
    if (!pid)
        return std::nullopt;

    const EncodingLine error{*pid, ErrorLine{}};
    if (!scanner.blanks().literal(","))
        return error;
    scanner.blanks();

    if (const auto value = scanner.field("P:")) {
        const auto percentage = Scanner(*value).number();
        if (percentage && *percentage >= 0)
            return EncodingLine{*pid, ProgressLine{*percentage}};
    } else if (const auto path = scanner.field("path:"); path && !path->empty()) {
        if (path->size() > kMaxValueBytes)
            return EncodingLine{*pid, OverlongValue{true}};
        return EncodingLine{*pid, PathLine{*path}};
    } else if (const auto type = scanner.field("enc_type:"); type && !type->empty()) {
        const auto word = std::string_view(type->begin(), std::ranges::find_if(*type, isBlank));
        if (word.size() > kMaxValueBytes)
            return EncodingLine{*pid, OverlongValue{false}};
        return EncodingLine{*pid, TypeLine{word}};
    }
    return error;
}

} // namespace Kest::Settings
