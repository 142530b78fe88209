// The menu at one moment, as a value that a front end may keep.
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

/// The status menu is the submenu of an item that is never drawn, with the id `kStatusMenuId`.
ItemSnapshot takeSnapshot(const MenuModel& model);

/// One item with what is below it, down to a depth: 0 is the item alone, -1 all. None when no item in the
/// status menu or below has the id.
std::optional<ItemSnapshot> takeSnapshot(const MenuModel& model, ItemId id, int depth);

/// The item with the id, at any depth; null when there is none.
const ItemSnapshot* findItem(const ItemSnapshot& menu, ItemId id);

/// The visible submenus at any depth below an item.
std::vector<ItemId> submenusBelow(const ItemSnapshot& menu);

} // namespace Kest::App
