#include "app/MenuSnapshot.h"

namespace Kest::App {
namespace {

std::vector<ItemSnapshot> itemsOf(const Menu& menu)
{
    std::vector<ItemSnapshot> items;
    items.reserve(menu.itemArray().size());
    for (const auto& item : menu.itemArray()) {
        const Menu* submenu = item->submenu();
        items.push_back({item->id(), item->properties(), submenu != nullptr,
                         submenu == nullptr ? std::vector<ItemSnapshot>() : itemsOf(*submenu)});
    }
    return items;
}

} // namespace

ItemSnapshot takeSnapshot(const MenuModel& model)
{
    return {kStatusMenuId, {}, true, itemsOf(model.statusMenu())};
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

} // namespace Kest::App
