// Records what changes in the menu, so that a front end updates only that.
#pragma once

#include "app/ItemProperties.h"

#include <cstddef>
#include <map>
#include <optional>
#include <vector>

namespace Kest::App {

/// The state of an item before its first change since the last `MenuJournal::take`.
struct PreviousState {
    SharedProperties properties;
    bool hadSubmenu = false;
};

/// The change of one menu's list of items. If both lists are empty, only the order of the items can have
/// changed. The model has the new order.
struct LayoutChange {
    std::map<ItemId, SharedProperties> removed; // with their last properties
    std::vector<ItemId> added;                  // ascending
};

/// The changes of the menu since the last `MenuJournal::take`. An added or removed item appears in its menu's
/// `LayoutChange` only. The items of its submenu, at any depth, are not listed.
struct MenuChanges {
    /// By id: the previous states of items that still exist and whose properties changed, or which gained or
    /// lost a submenu.
    std::map<ItemId, PreviousState> items;
    /// By the id of the item whose submenu changed; `kStatusMenuId` for the status menu.
    std::map<ItemId, LayoutChange> menus;
    bool isEmpty() const { return items.empty() && menus.empty(); }
};

class MenuItem;
class MenuModel;

/// Records each change of an item or a menu; `MenuModel` calls it. A front end gets the result of `take`, and
/// so need not compare thousands of items to find one change. A new item, and all below it, is not recorded
/// again until the next `take`: it is reported once, as added. Main thread only.
class MenuJournal {
public:
    /// Call before an item changes, with its state at that time. Only the first state since the last `take`
    /// is kept.
    void itemWillChange(ItemId id, const PreviousState& before);
    /// Call when an item is added to a menu or removed from it. `owner` is the id of the item whose submenu
    /// that menu is; `kStatusMenuId` for the status menu.
    void itemAdded(ItemId owner, ItemId id);
    void itemRemoved(ItemId owner, ItemId id, const SharedProperties& properties);
    /// Call before a menu is refilled, which means that all its items are removed and items are added.
    /// `before` has the ids of its items from top to bottom. Also call `itemRemoved` and `itemAdded` for each
    /// of them. If a new item gets the id of a removed one, call `itemWillChange` with the state of the
    /// removed item.
    void menuWillRefill(ItemId owner, std::vector<ItemId> before);

    /// Returns the number of calls of `itemWillChange`, `itemAdded` and `itemRemoved` that were recorded
    /// since the last `take`.
    std::size_t recordCount() const { return recorded; }

    /// Returns the changes since the previous `take`, and clears the journal. `lastAssigned` is the highest
    /// id assigned so far, or the maximum after ids are reused: items with higher ids count as new until the
    /// next `take`. A menu can be reported although it has not changed: if an item was added, and a refill
    /// removed that item.
    MenuChanges take(const MenuModel& model, ItemId lastAssigned);

private:
    struct MenuRecord {
        LayoutChange change;
        std::optional<std::vector<ItemId>> before; // set when the menu was refilled
    };
    bool isLayoutChanged(const MenuModel& model, ItemId owner, const MenuRecord& menu) const;
    bool isDifferent(const MenuModel& model, ItemId id, const PreviousState& before) const;
    bool isNew(const MenuItem& item) const;

    ItemId lastKnown = kStatusMenuId;
    std::size_t recorded = 0;
    std::map<ItemId, PreviousState> items;
    std::map<ItemId, MenuRecord> menus;
};

} // namespace Kest::App
