// What has happened to the menu between two looks at it.
#pragma once

#include "app/ItemProperties.h"

#include <unordered_map>
#include <vector>

namespace Kest::App {

/// What was seen of an item before its first change.
struct ItemBefore {
    SharedProperties properties;
    bool hadSubmenu = false;
};

/// In no particular order. An item that came or went is told of by its menu alone, and so is all below it.
struct MenuChanges {
    std::unordered_map<ItemId, ItemBefore> items; // are still there, and look different
    std::vector<ItemId> menus;                    // items came, went or moved; named by their owner's id
    bool isEmpty() const { return items.empty() && menus.empty(); }
};

class MenuModel;

/// Notes what is touched, so that nobody has to walk along thousands of items to find the one that changed.
/// Main thread only.
class MenuJournal {
public:
    /// An item is about to change, or has taken up the id of one that was removed. What was noted first
    /// stays.
    void noteItem(ItemId id, const ItemBefore& before) { items.try_emplace(id, before); }
    /// An item came to a menu, left it or moved.
    void noteMenu(ItemId owner) { menus.try_emplace(owner); }
    /// A menu is about to be filled anew, perhaps with the same items.
    void noteRefill(ItemId owner, std::vector<ItemId> before)
    {
        menus.try_emplace(owner, Refill{true, std::move(before)});
    }

    /// What is different in the model now; forgets it. Ids up to `lastKnown` were given before. A menu that
    /// an item came to and left again may be named too, and an item that is back after a while.
    MenuChanges take(const MenuModel& model, ItemId lastKnown);

private:
    struct Refill {
        bool isKnown = false; // what was there before
        std::vector<ItemId> before;
    };
    static bool isReshaped(const MenuModel& model, ItemId owner, const Refill& refill);

    std::unordered_map<ItemId, ItemBefore> items;
    std::unordered_map<ItemId, Refill> menus;
};

} // namespace Kest::App
