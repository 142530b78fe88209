// The changes of the menu since they were last taken.
#pragma once

#include "app/ItemProperties.h"

#include <cstddef>
#include <map>
#include <optional>
#include <vector>

namespace Kest::App {

/// The state of an item before its first change.
struct PreviousState {
    SharedProperties properties;
    bool hadSubmenu = false;
};

/// The items added to a menu and removed from it. If there are none, the order of its items has changed.
struct LayoutChange {
    std::map<ItemId, SharedProperties> removed;
    std::vector<ItemId> added; // ascending
};

/// Changes by id. Added and removed items and their descendants appear only in `menus`.
struct MenuChanges {
    std::map<ItemId, PreviousState> items; // existing items whose properties or submenu presence changed
    std::map<ItemId, LayoutChange> menus;  // by the id of the item that owns the menu
    bool isEmpty() const { return items.empty() && menus.empty(); }
};

class MenuItem;
class MenuModel;

/// Records changed items and menus, so that finding one change does not require a search of thousands of
/// items. Does not record changes of items and menus added since the last `take`: this saves memory in a
/// flood. Main thread only.
class MenuJournal {
public:
    /// Records the state of an item that is about to change, or of a removed item whose id is reused. Keeps
    /// only the first state of an id.
    void itemWillChange(ItemId id, const PreviousState& before);
    void itemAdded(ItemId owner, ItemId id);
    void itemRemoved(ItemId owner, ItemId id, const SharedProperties& properties);
    /// Records the items of a menu that is about to be refilled.
    void menuWillRefill(ItemId owner, std::vector<ItemId> before);

    /// Returns how often an item was recorded as changed, added or removed since the last `take`.
    std::size_t recordCount() const { return recorded; }

    /// Returns the changes since the previous call and clears the journal. Ids up to `lastAssigned` count as
    /// known afterwards. May include a menu that was refilled with its previous items, if another item was
    /// added before and removed by the refill.
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
