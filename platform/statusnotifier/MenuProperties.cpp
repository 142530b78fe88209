#include "platform/statusnotifier/MenuProperties.h"

#include "text/Utf8.h"

#include <algorithm>

namespace Kest::StatusNotifier {
namespace {

using App::ItemSnapshot;
using App::Mark;

// Always includes the state, as 0 or 1: panels keep an old tick if the state is removed.
void addMark(const App::ItemProperties& item, Properties& properties)
{
    if (item.mark == Mark::none)
        return;
    properties["toggle-type"] = item.mark == Mark::radio ? "radio" : "checkmark";
    properties["toggle-state"] = std::int32_t{item.on ? 1 : 0};
}

ItemUpdate updateOf(const ItemSnapshot& shown, const ItemSnapshot& now)
{
    const auto before = itemProperties(shown);
    ItemUpdate update{now.id, itemProperties(now), {}};
    for (const auto& [name, value] : before)
        if (!update.updated.contains(name))
            update.removed.push_back(name);
    std::erase_if(update.updated, [&](const auto& property) {
        const auto same = before.find(property.first);
        return same != before.end() && same->second == property.second;
    });
    return update;
}

} // namespace

std::string busText(std::string_view text)
{
    std::string valid;
    Text::forEachCharacter(text, [&](const Text::Character& character) {
        const bool isNoncharacter =
            (character.code >= 0xFDD0 && character.code <= 0xFDEF) || (character.code & 0xFFFEU) == 0xFFFE;
        Text::append(valid, isNoncharacter ? Text::kReplacementCharacter : character.code);
    });
    return valid;
}

std::string escapedLabel(const std::string& text)
{
    std::string escaped;
    for (const char c : busText(text)) {
        const auto byte = static_cast<unsigned char>(c);
        escaped += byte < 0x20 || byte == 0x7F ? ' ' : c;
        if (c == '_')
            escaped += '_';
    }
    return escaped;
}

Properties itemProperties(const ItemSnapshot& item)
{
    const auto& seen = *item.properties;
    Properties properties;
    if (!seen.enabled)
        properties["enabled"] = false;
    if (seen.hidden)
        properties["visible"] = false;
    if (seen.separator) {
        properties["type"] = "separator";
        return properties;
    }
    properties["label"] = escapedLabel(plainLabel(seen));
    addMark(seen, properties);
    if (seen.red)
        properties["disposition"] = "alert";
    if (item.hasSubmenu)
        properties["children-display"] = "submenu";
    return properties;
}

Properties changeableProperties(const ItemSnapshot& item)
{
    auto properties = itemProperties(item);
    for (const char* constant : {"type", "toggle-type", "children-display"})
        properties.erase(constant);
    properties.merge(Properties{{"enabled", true}, {"visible", true}, {"disposition", "normal"}});
    return properties;
}

Layout layoutOf(const ItemSnapshot& item)
{
    Layout layout{item.id, itemProperties(item), {}};
    for (const auto& child : item.items)
        layout.children.push_back(layoutOf(child));
    return layout;
}

std::vector<ItemUpdate> itemUpdates(const App::MenuChanges& changes, const App::MenuModel& menu)
{
    std::vector<ItemUpdate> updates;
    for (const auto& [id, before] : changes.items) {
        auto update = updateOf({id, before.properties, before.hadSubmenu, {}}, *takeSnapshot(menu, id, 0));
        if (!update.updated.empty() || !update.removed.empty())
            updates.push_back(std::move(update));
    }
    return updates;
}

} // namespace Kest::StatusNotifier
