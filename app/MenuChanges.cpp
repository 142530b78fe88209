#include "app/MenuChanges.h"

#include "app/MenuModel.h"

#include <algorithm>
#include <utility>

namespace Kest::App {

void MenuJournal::itemWillChange(ItemId id, const PreviousState& before)
{
    if (id > lastKnown)
        return;
    ++recorded;
    items.try_emplace(id, before);
}

void MenuJournal::itemAdded(ItemId owner, ItemId id)
{
    if (owner > lastKnown)
        return;
    ++recorded;
    auto& [removed, added] = menus[owner].change;
    if (removed.erase(id) == 0)
        added.insert(std::ranges::upper_bound(added, id), id);
}

void MenuJournal::itemRemoved(ItemId owner, ItemId id, const SharedProperties& properties)
{
    if (owner > lastKnown)
        return;
    ++recorded;
    auto& [removed, added] = menus[owner].change;
    const auto position = std::ranges::lower_bound(added, id);
    if (position != added.end() && *position == id)
        added.erase(position);
    else
        removed.emplace(id, properties);
}

void MenuJournal::menuWillRefill(ItemId owner, std::vector<ItemId> before)
{
    if (auto* menu = owner > lastKnown ? nullptr : &menus[owner]; menu != nullptr && !menu->before)
        menu->before = std::move(before);
}

MenuChanges MenuJournal::take(const MenuModel& model, ItemId lastAssigned)
{
    MenuChanges changes;
    for (const auto& [owner, menu] : menus)
        if (isLayoutChanged(model, owner, menu))
            changes.menus.emplace(owner, menu.change);
    for (const auto& [id, before] : items)
        if (isDifferent(model, id, before))
            changes.items.emplace(id, before);
    menus.clear();
    items.clear();
    recorded = 0;
    lastKnown = lastAssigned;
    return changes;
}

bool MenuJournal::isLayoutChanged(const MenuModel& model, ItemId owner, const MenuRecord& menu) const
{
    const auto& [removed, added] = menu.change;
    const auto* item = model.itemWithId(owner);
    if (owner != kStatusMenuId && (item == nullptr || isNew(*item)))
        return false;
    if (!removed.empty() || !added.empty() || !menu.before)
        return !removed.empty() || !added.empty();
    const Menu* now = item == nullptr ? &model.statusMenu() : item->submenu();
    const auto isSame = [](const auto& is, ItemId was) { return is->id() == was; };
    return now == nullptr ? !menu.before->empty()
                          : !std::ranges::equal(now->itemArray(), *menu.before, isSame);
}

bool MenuJournal::isDifferent(const MenuModel& model, ItemId id, const PreviousState& before) const
{
    const auto* item = model.itemWithId(id);
    return item != nullptr && !isNew(*item) &&
           (item->sharedProperties() != before.properties ||
            (item->submenu() != nullptr) != before.hadSubmenu);
}

// Returns whether the item was added since the last `take`. Its id may be older: a refilled menu reuses ids.
bool MenuJournal::isNew(const MenuItem& item) const
{
    const auto menu = menus.find(item.parentItem() == nullptr ? kStatusMenuId : item.parentItem()->id());
    return menu != menus.end() && std::ranges::binary_search(menu->second.change.added, item.id());
}

} // namespace Kest::App
