// Snapshots of the menu: values that do not change with the model.
#pragma once

#include "app/MenuModel.h"

#include <optional>
#include <vector>

namespace Kest::App {

struct ItemSnapshot {
    ItemId id = kStatusMenuId;
    SharedProperties properties = ItemProperties();
    bool hasSubmenu = false;
    std::vector<ItemSnapshot> items; // of the submenu; empty if the snapshot omits this level
    bool operator==(const ItemSnapshot&) const = default;
};

/// Returns the whole menu, hidden items included, as the submenu of an item with the id `kStatusMenuId`. That
/// item only contains the menu and is not drawn.
ItemSnapshot takeSnapshot(const MenuModel& model);

/// Returns the item with this id and `depth` levels of submenus below it: 0 means none, -1 means all. For
/// `kStatusMenuId`, the first level is the status menu itself. Returns nullopt if the menu has no such item.
std::optional<ItemSnapshot> takeSnapshot(const MenuModel& model, ItemId id, int depth);

/// Returns the item with this id: `menu` itself or an item below it, at any depth; null if there is none. The
/// pointer points into `menu`.
const ItemSnapshot* findItem(const ItemSnapshot& menu, ItemId id);

/// Returns the ids of the items below `menu`, at any depth, that have a submenu. Omits hidden items and all
/// items below them.
std::vector<ItemId> submenuIdsBelow(const ItemSnapshot& menu);

} // namespace Kest::App
