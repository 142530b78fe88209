#include "platform/terminal/TextMenu.h"

namespace Kest::Terminal {
namespace {

using App::ItemProperties;
using App::ItemSnapshot;

std::string lineOf(const ItemSnapshot& item)
{
    const auto& seen = *item.properties;
    if (seen.separator)
        return "--------";
    return markText(seen) + printable(plainLabel(seen)) + (seen.enabled ? "" : " (greyed)");
}

void addSubmenus(const ItemSnapshot& menu, std::vector<App::ItemId>& submenus)
{
    for (const auto& item : menu.items) {
        if (!item.hasSubmenu || item.properties->hidden)
            continue;
        submenus.push_back(item.id);
        addSubmenus(item, submenus);
    }
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

// What is different, in words; empty when nothing that is seen here is.
std::string differenceText(const ItemProperties& before, const ItemProperties& now)
{
    std::vector<std::string> words;
    if (before.hidden != now.hidden)
        words.emplace_back(now.hidden ? "hidden" : "shown");
    if (before.on != now.on)
        words.emplace_back(now.on ? "on" : "off");
    if (before.enabled != now.enabled)
        words.emplace_back(now.enabled ? "available" : "greyed");
    if (before.red != now.red)
        words.emplace_back(now.red ? "not available" : "available again");
    if (now.view && before.view != now.view)
        words.push_back(now.view->percent ? now.view->percentText() : "no percentage");

    std::string text;
    for (const auto& word : words)
        text += (text.empty() ? ": " : ", ") + word;
    return text;
}

/// An item with nothing to tell, against which a new one is described.
const ItemProperties kPlain{.view = App::EntryView{}};

std::string pathOf(const App::MenuItem& item)
{
    const auto name = printable(itemName(item.properties()));
    return item.parentItem() == nullptr ? name : pathOf(*item.parentItem()) + kPathSeparator + name;
}

bool isWithinHidden(const App::MenuItem& item)
{
    const auto* above = item.parentItem();
    return above != nullptr && (above->properties().hidden || isWithinHidden(*above));
}

void addReshape(const App::MenuItem* owner, const App::MenuReshape& reshape, const App::MenuModel& menu,
                std::vector<std::string>& lines)
{
    if (owner != nullptr && (owner->properties().hidden || isWithinHidden(*owner)))
        return;
    const auto above = owner == nullptr ? std::string() : pathOf(*owner) + kPathSeparator;
    for (const auto& [id, went] : reshape.went)
        if (isListed(*went))
            lines.push_back("removed " + above + printable(itemName(*went)));
    for (const auto id : reshape.came)
        if (const auto& came = menu.itemWithId(id)->properties(); isListed(came))
            lines.push_back("added " + above + printable(itemName(came)) + differenceText(kPlain, came));
}

// Of some changes, such as a submenu's coming, nothing is seen here.
void addChange(const ItemProperties& before, const App::MenuItem& item, std::vector<std::string>& lines)
{
    const auto text = differenceText(before, item.properties());
    if (!text.empty() && !(before.hidden && item.properties().hidden) && !isWithinHidden(item))
        lines.push_back("changed " + pathOf(item) + text);
}

} // namespace

std::vector<App::ItemId> submenusBelow(const ItemSnapshot& menu)
{
    std::vector<App::ItemId> submenus;
    addSubmenus(menu, submenus);
    return submenus;
}

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
    for (const auto& [owner, reshape] : changes.menus)
        addReshape(menu.itemWithId(owner), reshape, menu, lines);
    for (const auto& [id, before] : changes.items)
        addChange(*before.properties, *menu.itemWithId(id), lines);
    return lines;
}

} // namespace Kest::Terminal
