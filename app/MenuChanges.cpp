#include "app/MenuChanges.h"

#include "app/MenuModel.h"

#include <algorithm>
#include <utility>

namespace Kest::App {

void MenuJournal::noteItem(ItemId id, const ItemBefore& before)
{
    if (id > lastKnown)
        return;
    ++noted;
    items.try_emplace(id, before);
}

void MenuJournal::noteCame(ItemId owner, ItemId id)
{
    if (owner > lastKnown)
        return;
    ++noted;
    auto& [went, came] = menus[owner].reshape;
    if (went.erase(id) == 0)
        came.insert(std::ranges::upper_bound(came, id), id);
}

void MenuJournal::noteWent(ItemId owner, ItemId id, const SharedProperties& properties)
{
    if (owner > lastKnown)
        return;
    ++noted;
    auto& [went, came] = menus[owner].reshape;
    const auto place = std::ranges::lower_bound(came, id);
    if (place != came.end() && *place == id)
        came.erase(place);
    else
        went.emplace(id, properties);
}

void MenuJournal::noteRefill(ItemId owner, std::vector<ItemId> before)
{
    if (auto* menu = owner > lastKnown ? nullptr : &menus[owner]; menu != nullptr && !menu->before)
        menu->before = std::move(before);
}

MenuChanges MenuJournal::take(const MenuModel& model, ItemId lastGiven)
{
    MenuChanges changes;
    for (const auto& [owner, menu] : menus)
        if (isReshaped(model, owner, menu))
            changes.menus.emplace(owner, menu.reshape);
    for (const auto& [id, before] : items)
        if (isDifferent(model, id, before))
            changes.items.emplace(id, before);
    menus.clear();
    items.clear();
    noted = 0;
    lastKnown = lastGiven;
    return changes;
}

bool MenuJournal::isReshaped(const MenuModel& model, ItemId owner, const Touched& menu) const
{
    const auto& [went, came] = menu.reshape;
    const auto* item = model.itemWithId(owner);
    if (owner != kStatusMenuId && (item == nullptr || hasCome(*item)))
        return false;
    if (!went.empty() || !came.empty() || !menu.before)
        return !went.empty() || !came.empty();
    const Menu* now = item == nullptr ? &model.statusMenu() : item->submenu();
    const auto isSame = [](const auto& is, ItemId was) { return is->id() == was; };
    return now == nullptr ? !menu.before->empty()
                          : !std::ranges::equal(now->itemArray(), *menu.before, isSame);
}

bool MenuJournal::isDifferent(const MenuModel& model, ItemId id, const ItemBefore& before) const
{
    const auto* item = model.itemWithId(id);
    return item != nullptr && !hasCome(*item) &&
           (item->sharedProperties() != before.properties ||
            (item->submenu() != nullptr) != before.hadSubmenu);
}

// Returns whether the item was added since the last `take`. Its id may be older: a refilled menu reuses ids.
bool MenuJournal::hasCome(const MenuItem& item) const
{
    const auto menu = menus.find(item.parentItem() == nullptr ? kStatusMenuId : item.parentItem()->id());
    return menu != menus.end() && std::ranges::binary_search(menu->second.reshape.came, item.id());
}

} // namespace Kest::App
