// The menu at one moment, as a value that a front end may keep.
#pragma once

#include "app/MenuModel.h"

#include <vector>

namespace Kest::App {

struct ItemSnapshot {
    ItemId id = kStatusMenuId;
    ItemProperties properties;
    bool hasSubmenu = false;
    std::vector<ItemSnapshot> items; // of the submenu
    bool operator==(const ItemSnapshot&) const = default;
};

/// The status menu is the submenu of an item that is never drawn, with the id `kStatusMenuId`.
ItemSnapshot takeSnapshot(const MenuModel& model);

/// The item with the id, at any depth; null when there is none.
const ItemSnapshot* findItem(const ItemSnapshot& menu, ItemId id);

} // namespace Kest::App
