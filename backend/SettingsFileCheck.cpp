#include "backend/SettingsFileCheck.h"

#include <algorithm>

namespace Kest::Settings {
namespace {

constexpr std::string_view kBlanks = " \t\r\n";

/// Walks along the text; each step skips blanks and comments first, and says whether it could be taken.
class Scanner {
public:
    explicit Scanner(std::string_view text) : rest(text) {}

    bool skip(std::string_view expected)
    {
        skipBlanks();
        if (!rest.starts_with(expected))
            return false;
        rest.remove_prefix(expected.size());
        return true;
    }

    bool skipName(std::string_view name) { return skip(name) && rest.find_first_of(kBlanks) == 0; }

    // The value may hold anything but its quote and markup, which are always written as entities.
    bool skipAttribute(std::string_view name)
    {
        if (!skip(name) || !skip("="))
            return false;
        skipBlanks();
        const char quote = rest.empty() ? '\0' : rest.front();
        const auto end = rest.find_first_of(quote == '"' ? "\"<" : "'<", 1);
        if ((quote != '"' && quote != '\'') || end == std::string_view::npos || rest[end] != quote)
            return false;
        rest.remove_prefix(end + 1);
        return true;
    }

    bool isAtEnd()
    {
        skipBlanks();
        return rest.empty();
    }

private:
    void skipBlanks()
    {
        for (;;) {
            rest.remove_prefix(std::min(rest.find_first_not_of(kBlanks), rest.size()));
            const auto end = rest.starts_with("<!--") ? rest.find("-->", 4) : std::string_view::npos;
            if (end == std::string_view::npos)
                return;
            rest.remove_prefix(end + 3);
        }
    }

    std::string_view rest;
};

bool skipValue(Scanner& scanner)
{
    return scanner.skipName("<VALUE") && scanner.skipAttribute("name") && scanner.skipAttribute("val") &&
           (scanner.skip("/>") || (scanner.skip(">") && scanner.skip("</VALUE>")));
}

} // namespace

bool isSettingsText(std::string_view text)
{
    if (text.size() > kLongestSettings || text.find('\0') != std::string_view::npos)
        return false;
    Scanner scanner(text);
    if (text.starts_with("<?xml") && !(scanner.skip("<?xml version=\"1.0\" encoding=\"UTF-8\"?>")))
        return false;
    if (!scanner.skip("<PROPERTIES/>")) {
        if (!scanner.skip("<PROPERTIES>"))
            return false;
        while (!scanner.skip("</PROPERTIES>"))
            if (!skipValue(scanner))
                return false;
    }
    return scanner.isAtEnd();
}

} // namespace Kest::Settings
