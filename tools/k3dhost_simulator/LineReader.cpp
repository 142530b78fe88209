#include "tools/k3dhost_simulator/LineReader.h"

#include <charconv>

namespace K3DHostSimulator {
namespace {

constexpr std::string_view kBlanks = " \t\r";

// The byte of an escape sequence and the sequence's length; 0 characters if it is invalid.
struct Escape {
    char byte = 0;
    std::size_t characters = 0;
};

Escape readEscape(std::string_view text)
{
    if (text.size() >= 2 && (text[1] == '\\' || text[1] == '"'))
        return {text[1], 2};
    if (text.size() < 4 || text[1] != 'x')
        return {};
    unsigned value = 0;
    const auto result = std::from_chars(text.data() + 2, text.data() + 4, value, 16);
    // NUL is refused, because it ends a text of the session.
    if (result.ptr != text.data() + 4 || value == 0)
        return {};
    return {static_cast<char>(value), 4};
}

} // namespace

LineReader::LineReader(std::string_view line) : rest(line.substr(0, line.find_last_not_of(kBlanks) + 1))
{
    skipBlanks();
}

void LineReader::skipBlanks()
{
    const auto start = rest.find_first_not_of(kBlanks);
    rest.remove_prefix(start == std::string_view::npos ? rest.size() : start);
}

std::string_view LineReader::word()
{
    const auto found = rest.substr(0, rest.find_first_of(kBlanks));
    rest.remove_prefix(found.size());
    skipBlanks();
    return found;
}

bool LineReader::accept(std::string_view expectedWords)
{
    if (rest.substr(0, expectedWords.size()) != expectedWords)
        return false;
    const auto after = rest.substr(expectedWords.size());
    if (!after.empty() && kBlanks.find(after.front()) == std::string_view::npos)
        return false;
    rest = after;
    skipBlanks();
    return true;
}

std::optional<std::string> LineReader::quoted(std::string& error)
{
    std::string text;
    rest.remove_prefix(1);
    while (!rest.empty() && rest.front() != '"') {
        Escape next{rest.front(), 1};
        if (rest.front() == '\\')
            next = readEscape(rest);
        if (next.characters == 0) {
            error = "invalid escape in a quoted text; valid are \\xNN except \\x00, \\\\ and \\\"";
            return std::nullopt;
        }
        text += next.byte;
        rest.remove_prefix(next.characters);
    }
    if (rest.empty()) {
        error = "a quoted text has no closing quote";
        return std::nullopt;
    }
    rest.remove_prefix(1);
    skipBlanks();
    return text;
}

std::optional<std::string> LineReader::wordOrQuoted(std::string& error)
{
    if (rest.empty()) {
        error = "expected a word or a quoted text at the end";
        return std::nullopt;
    }
    if (rest.front() == '"')
        return quoted(error);
    return std::string(word());
}

std::optional<std::string> LineReader::lastText(std::string& error)
{
    if (!rest.empty() && rest.front() != '"') {
        const std::string text(rest);
        rest = {};
        return text;
    }
    auto text = wordOrQuoted(error);
    if (text && !rest.empty()) {
        error = "'" + std::string(rest) + "' is unexpected after the quoted text";
        return std::nullopt;
    }
    return text;
}

} // namespace K3DHostSimulator
