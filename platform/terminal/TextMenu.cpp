#include "platform/terminal/TextMenu.h"

#include "app/MenuEvents.h"

namespace Kest::Terminal {
namespace {

using App::ItemProperties;
using App::ItemSnapshot;

std::string lineOf(const ItemSnapshot& item)
{
    const auto& props = *item.properties;
    if (props.separator)
        return "--------";
    return markText(props) + printable(plainLabel(props)) + (props.enabled ? "" : " (greyed)");
}

void addLines(const ItemSnapshot& menu, const std::string& indent, std::vector<std::string>& lines)
{
    for (const auto& item : menu.items) {
        if (item.properties->hidden)
            continue;
        lines.push_back(indent + lineOf(item));
        addLines(item, indent + "  ", lines);
    }
}

} // namespace

std::string markText(const ItemProperties& item)
{
    switch (item.mark) {
    case App::Mark::radio:
        return item.on ? "(x) " : "( ) ";
    case App::Mark::check:
        return item.on ? "[x] " : "[ ] ";
    case App::Mark::none:
        break;
    }
    return "";
}

std::vector<std::string> menuLines(const ItemSnapshot& menu)
{
    std::vector<std::string> lines;
    addLines(menu, "  ", lines);
    return lines;
}

std::vector<std::string> changeLines(const App::MenuChanges& changes, const App::MenuModel& menu)
{
    std::vector<std::string> lines;
    for (const auto& event : menuEvents(changes, menu))
        lines.push_back(event.line());
    return lines;
}

} // namespace Kest::Terminal
