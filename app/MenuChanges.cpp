#include "app/MenuChanges.h"

#include "app/MenuModel.h"

#include <algorithm>
#include <utility>

namespace Kest::App {

MenuChanges MenuJournal::take(const MenuModel& model, ItemId lastKnown)
{
    MenuChanges changes;
    for (auto& [id, before] : std::exchange(items, {})) {
        const auto* item = id > lastKnown ? nullptr : model.itemWithId(id);
        if (item != nullptr && (item->sharedProperties() != before.properties ||
                                (item->submenu() != nullptr) != before.hadSubmenu))
            changes.items.emplace(id, before);
    }
    for (const auto& [owner, refill] : std::exchange(menus, {}))
        if (owner <= lastKnown && isReshaped(model, owner, refill))
            changes.menus.push_back(owner);
    return changes;
}

bool MenuJournal::isReshaped(const MenuModel& model, ItemId owner, const Refill& refill)
{
    const auto* item = model.itemWithId(owner);
    if (item == nullptr && owner != kStatusMenuId)
        return false;
    const Menu* menu = item == nullptr ? &model.statusMenu() : item->submenu();
    if (menu == nullptr)
        return !refill.isKnown || !refill.before.empty();
    const auto isSame = [](const auto& now, ItemId before) { return now->id() == before; };
    return !refill.isKnown || !std::ranges::equal(menu->itemArray(), refill.before, isSame);
}

} // namespace Kest::App
