#include "app/MenuSnapshot.h"

namespace Kest::App {
namespace {

ItemSnapshot snapshotOf(const MenuItem& item, int depth);

std::vector<ItemSnapshot> itemsOf(const Menu* menu, int depth)
{
    std::vector<ItemSnapshot> items;
    if (menu == nullptr || depth == 0)
        return items;
    items.reserve(menu->itemArray().size());
    for (const auto& item : menu->itemArray())
        items.push_back(snapshotOf(*item, depth - 1));
    return items;
}

ItemSnapshot snapshotOf(const MenuItem& item, int depth)
{
    return {item.id(), item.sharedProperties(), item.submenu() != nullptr, itemsOf(item.submenu(), depth)};
}

void addSubmenus(const ItemSnapshot& menu, std::vector<ItemId>& submenus)
{
    for (const auto& item : menu.items) {
        if (!item.hasSubmenu || item.properties->hidden)
            continue;
        submenus.push_back(item.id);
        addSubmenus(item, submenus);
    }
}

} // namespace

ItemSnapshot takeSnapshot(const MenuModel& model) { return *takeSnapshot(model, kStatusMenuId, -1); }

std::optional<ItemSnapshot> takeSnapshot(const MenuModel& model, ItemId id, int depth)
{
    if (id == kStatusMenuId)
        return ItemSnapshot{id, ItemProperties(), true, itemsOf(&model.statusMenu(), depth)};
    const auto* item = model.itemWithId(id);
    return item == nullptr ? std::nullopt : std::optional(snapshotOf(*item, depth));
}

const ItemSnapshot* findItem(const ItemSnapshot& menu, ItemId id)
{
    if (menu.id == id)
        return &menu;
    for (const auto& item : menu.items)
        if (const auto* found = findItem(item, id))
            return found;
    return nullptr;
}

std::vector<ItemId> submenuIdsBelow(const ItemSnapshot& menu)
{
    std::vector<ItemId> submenus;
    addSubmenus(menu, submenus);
    return submenus;
}

} // namespace Kest::App
