#include "app/MenuEvents.h"

#include "app/ItemPath.h"
#include "app/MenuModel.h"
#include "text/Printable.h"

namespace Kest::App {
namespace {

std::string differenceText(const ItemProperties& before, const ItemProperties& now)
{
    std::vector<std::string> differences;
    if (before.hidden != now.hidden)
        differences.emplace_back(now.hidden ? "hidden" : "shown");
    if (before.on != now.on)
        differences.emplace_back(now.on ? "on" : "off");
    if (before.enabled != now.enabled)
        differences.emplace_back(now.enabled ? "available" : "greyed");
    if (before.red != now.red)
        differences.emplace_back(now.red ? "not available" : "available again");
    if (now.encoding && before.encoding != now.encoding)
        differences.push_back(now.encoding->percent ? now.encoding->percentText() : "no percentage");

    std::string text;
    for (const auto& difference : differences)
        text += (text.empty() ? "" : ", ") + difference;
    return text;
}

/// The default state, with which an added item is compared.
const ItemProperties kPlain{.title = {}, .encoding = EncodingState{}};

std::string pathOf(const MenuItem& item)
{
    const auto name = Text::printable(itemName(item.properties()));
    return item.parentItem() == nullptr ? name
                                        : pathOf(*item.parentItem()).append(kPathSeparator).append(name);
}

bool isWithinHidden(const MenuItem& item)
{
    const auto* above = item.parentItem();
    return above != nullptr && (above->properties().hidden || isWithinHidden(*above));
}

void addLayoutChange(const MenuItem* owner, const LayoutChange& change, const MenuModel& menu,
                     std::vector<MenuEvent>& events)
{
    if (owner != nullptr && (owner->properties().hidden || isWithinHidden(*owner)))
        return;
    const auto above = owner == nullptr ? std::string() : pathOf(*owner).append(kPathSeparator);
    for (const auto& [id, removed] : change.removed)
        if (isListed(*removed))
            events.push_back({MenuEvent::Kind::removed, id, above + Text::printable(itemName(*removed)), {}});
    for (const auto id : change.added)
        if (const auto& added = menu.itemWithId(id)->properties(); isListed(added))
            events.push_back({MenuEvent::Kind::added, id, above + Text::printable(itemName(added)),
                              differenceText(kPlain, added)});
}

// Ignores changes that are not visible, for example an added submenu.
void addChange(const ItemProperties& before, const MenuItem& item, std::vector<MenuEvent>& events)
{
    const auto what = differenceText(before, item.properties());
    if (!what.empty() && !(before.hidden && item.properties().hidden) && !isWithinHidden(item))
        events.push_back({MenuEvent::Kind::changed, item.id(), pathOf(item), what});
}

const char* verb(MenuEvent::Kind kind)
{
    if (kind == MenuEvent::Kind::changed)
        return "changed ";
    return kind == MenuEvent::Kind::added ? "added " : "removed ";
}

} // namespace

std::string MenuEvent::line() const { return verb(kind) + path + (what.empty() ? "" : ": " + what); }

std::vector<MenuEvent> menuEvents(const MenuChanges& changes, const MenuModel& menu)
{
    std::vector<MenuEvent> events;
    for (const auto& [owner, change] : changes.menus)
        addLayoutChange(menu.itemWithId(owner), change, menu, events);
    for (const auto& [id, before] : changes.items)
        addChange(*before.properties, *menu.itemWithId(id), events);
    return events;
}

} // namespace Kest::App
