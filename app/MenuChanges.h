// Records the changes of the menu, so that a front end updates only what has changed.
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
/// `LayoutChange` only. The items in the submenu of an added or removed item are not listed, at any depth.
struct MenuChanges {
    /// The previous states, by id, of the items whose properties changed and the items that gained or lost a
    /// submenu. Contains only items that still exist.
    std::map<ItemId, PreviousState> items;
    /// The changed menus, by the id of the item that has the menu as its submenu; `kStatusMenuId` for the
    /// status menu.
    std::map<ItemId, LayoutChange> menus;
    bool isEmpty() const { return items.empty() && menus.empty(); }
};

class MenuItem;
class MenuModel;

/// Records each change of an item or a menu; `MenuModel` calls it. A front end gets the result of `take`, so
/// it need not compare thousands of items to find one change. An item is new if it was added since the last
/// `take`. A new item is reported once, as added: changes of it and of the items in its submenu are ignored.
/// Main thread only.
class MenuJournal {
public:
    /// Call before an item changes, with its state at that time; for a refill, see `menuWillRefill`. Only the
    /// item's first state since the last `take` is kept.
    void itemWillChange(ItemId id, const PreviousState& before);
    /// Call when an item is added to a menu or removed from it. `owner` is the id of the item that has this
    /// menu as its submenu; `kStatusMenuId` for the status menu.
    void itemAdded(ItemId owner, ItemId id);
    void itemRemoved(ItemId owner, ItemId id, const SharedProperties& properties);
    /// Call before a menu is refilled, which means that all its items are removed and items are added.
    /// `before` has the ids of the old items from top to bottom. Then call `itemRemoved` for each old item
    /// and `itemAdded` for each item of the refilled menu. For an item that keeps its id, also call
    /// `itemWillChange` with its old state, before or after these calls.
    void menuWillRefill(ItemId owner, std::vector<ItemId> before);

    /// Returns the number of calls of `itemWillChange`, `itemAdded` and `itemRemoved` since the last `take`.
    /// Repeated calls for one item are counted, ignored calls are not.
    std::size_t recordCount() const { return recorded; }

    /// Returns the changes since the previous `take`, and clears the journal. `lastAssigned` is the highest
    /// id assigned so far: until the next `take`, the journal ignores changes of items with higher ids,
    /// because these items are new. When ids are reused, new items can have low ids. Then pass the highest
    /// possible id: the journal records their changes too, and the next `take` drops them. If an item is
    /// added and a refill removes it again before the next `take`, its menu may be reported with an empty
    /// `LayoutChange`.
    MenuChanges take(const MenuModel& model, ItemId lastAssigned);

private:
    struct MenuRecord {
        LayoutChange change;
        std::optional<std::vector<ItemId>> before; // ids before the first refill; null without a refill
    };
    bool isLayoutChanged(const MenuModel& model, ItemId owner, const MenuRecord& menu) const;
    bool isDifferent(const MenuModel& model, ItemId id, const PreviousState& before) const;
    bool isNew(const MenuItem& item) const;

    ItemId lastKnown = kStatusMenuId; // `lastAssigned` of the last `take`
    std::size_t recorded = 0;
    std::map<ItemId, PreviousState> items;
    std::map<ItemId, MenuRecord> menus;
};

} // namespace Kest::App
