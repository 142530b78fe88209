#include "backend/SettingsFileCheck.h"

#include "log/Log.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <sstream>

namespace Kest::Settings {
namespace {

constexpr std::string_view kBlanks = " \t\r\n";

void skipBlanks(std::string_view& rest)
{
    rest.remove_prefix(std::min(rest.find_first_not_of(kBlanks), rest.size()));
}

bool skip(std::string_view& rest, std::string_view expected)
{
    skipBlanks(rest);
    if (!rest.starts_with(expected))
        return false;
    rest.remove_prefix(expected.size());
    return true;
}

// `name="..."`; a quote or an angle bracket inside is always written as an entity.
bool skipAttribute(std::string_view& rest, std::string_view nameAndQuote)
{
    if (!skip(rest, nameAndQuote))
        return false;
    const auto end = rest.find_first_of("\"<");
    if (end == std::string_view::npos || rest[end] != '"')
        return false;
    rest.remove_prefix(end + 1);
    return true;
}

bool skipValue(std::string_view& rest)
{
    return skip(rest, "<VALUE ") && skipAttribute(rest, "name=\"") && skipAttribute(rest, "val=\"") &&
           skip(rest, "/>");
}

} // namespace

bool isSettingsText(std::string_view text)
{
    if (text.find('\0') != std::string_view::npos ||
        !skip(text, "<?xml version=\"1.0\" encoding=\"UTF-8\"?>"))
        return false;
    if (!skip(text, "<PROPERTIES/>")) {
        if (!skip(text, "<PROPERTIES>"))
            return false;
        while (!skip(text, "</PROPERTIES>"))
            if (!skipValue(text))
                return false;
    }
    skipBlanks(text);
    return text.empty();
}

void setAsideWhenDamaged(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    if (!file)
        return;
    std::ostringstream text;
    text << file.rdbuf();
    if (isSettingsText(text.str()))
        return;
    const auto aside = path + ".bad";
    const bool moved = std::rename(path.c_str(), aside.c_str()) == 0;
    Lct::Log(Lct::eLogError, "settings", "%s is damaged; %s", path.c_str(),
             moved ? "set aside as .bad" : std::strerror(errno));
}

} // namespace Kest::Settings
