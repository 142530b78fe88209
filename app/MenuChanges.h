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

/// The change of one menu's list of items. If `removed` and `added` are both empty, at most the order of the
/// items has changed. The model has the new order.
struct LayoutChange {
    std::map<ItemId, SharedProperties> removed; // with their last properties
    std::vector<ItemId> added;                  // ascending
};

/// The changes of the menu since the last `MenuJournal::take`. An added or removed item appears in its menu's
/// `LayoutChange` only. The items of its submenu, at any depth, are not listed.
struct MenuChanges {
    /// By id: the previous state of each item that still exists, if its properties changed or it gained or
    /// lost a submenu.
    std::map<ItemId, PreviousState> items;
    /// By the id of the item whose submenu changed; `kStatusMenuId` for the status menu.
    std::map<ItemId, LayoutChange> menus;
    bool isEmpty() const { return items.empty() && menus.empty(); }
};

class MenuItem;
class MenuModel;

/// Records each change of an item or a menu; `MenuModel` calls it. A front end gets the result of `take`, and
/// so need not compare thousands of items to find one change. Changes of a new item, or of items in its
/// submenu, are not recorded until the next `take`: the item is reported once, as added. Main thread only.
class MenuJournal {
public:
    /// Call before an item changes, with its state at that time. Only the first state since the last `take`
    /// is kept.
    void itemWillChange(ItemId id, const PreviousState& before);
    /// Call when an item is added to a menu or removed from it. `owner` is the id of the item that has this
    /// menu as its submenu; `kStatusMenuId` for the status menu.
    void itemAdded(ItemId owner, ItemId id);
    void itemRemoved(ItemId owner, ItemId id, const SharedProperties& properties);
    /// Call before a menu is refilled, which means that all its items are removed and items are added.
    /// `before` has the ids of the old items from top to bottom. Also call `itemRemoved` for each old item
    /// and `itemAdded` for each new one. If a new item gets the id of an old one, call `itemWillChange` with
    /// the state of the old one.
    void menuWillRefill(ItemId owner, std::vector<ItemId> before);

    /// Returns the number of calls of `itemWillChange`, `itemAdded` and `itemRemoved` that were recorded
    /// since the last `take`.
    std::size_t recordCount() const { return recorded; }

    /// Returns the changes since the previous `take`, and clears the journal. `lastAssigned` is the highest
    /// id assigned so far; once ids are reused, the highest possible id. An item with a higher id counts as
    /// new until the next `take`. If an item is added and a refill then removes it, its menu is reported
    /// although it has not changed.
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
