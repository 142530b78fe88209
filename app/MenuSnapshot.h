// Snapshots of the menu: values that a front end may store.
#pragma once

#include "app/MenuModel.h"

#include <optional>
#include <vector>

namespace Kest::App {

struct ItemSnapshot {
    ItemId id = kStatusMenuId;
    SharedProperties properties = ItemProperties();
    bool hasSubmenu = false;
    std::vector<ItemSnapshot> items; // of the submenu
    bool operator==(const ItemSnapshot&) const = default;
};

/// Returns the whole menu, as the submenu of an item with the id `kStatusMenuId` that is never drawn.
ItemSnapshot takeSnapshot(const MenuModel& model);

/// Returns one item with its submenu down to a depth: 0 is the item alone, -1 all levels. nullopt if no item
/// in the status menu or below has the id.
std::optional<ItemSnapshot> takeSnapshot(const MenuModel& model, ItemId id, int depth);

/// Returns the item with the id, at any depth; null if there is none.
const ItemSnapshot* findItem(const ItemSnapshot& menu, ItemId id);

/// Returns the visible submenus at any depth below an item.
std::vector<ItemId> submenusBelow(const ItemSnapshot& menu);

} // namespace Kest::App
