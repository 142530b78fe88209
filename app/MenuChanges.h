// What has happened to the menu between two looks at it.
#pragma once

#include "app/ItemProperties.h"

#include <cstddef>
#include <map>
#include <optional>
#include <vector>

namespace Kest::App {

/// What was seen of an item before its first change.
struct ItemBefore {
    SharedProperties properties;
    bool hadSubmenu = false;
};

/// Items that came to a menu and such that left it; with neither, their order is another one.
struct MenuReshape {
    std::map<ItemId, SharedProperties> went;
    std::vector<ItemId> came; // ascending
};

/// By id. Of an item that came or went, and of all below it, nothing is told but by the menu that it is in.
struct MenuChanges {
    std::map<ItemId, ItemBefore> items;  // are still there, and look different
    std::map<ItemId, MenuReshape> menus; // by their owner's id
    bool isEmpty() const { return items.empty() && menus.empty(); }
};

class MenuItem;
class MenuModel;

/// Notes what is touched, so that nobody has to walk along thousands of items to find the one that changed.
/// Of items and menus that nobody knows yet nothing is noted: a flood of them takes no room here. Main thread
/// only.
class MenuJournal {
public:
    /// An item is about to change, or has taken up the id of one that was removed. What is noted first stays.
    void noteItem(ItemId id, const ItemBefore& before);
    void noteCame(ItemId owner, ItemId id);
    void noteWent(ItemId owner, ItemId id, const SharedProperties& properties);
    /// A menu of these items is about to be filled anew, perhaps with the same ones.
    void noteRefill(ItemId owner, std::vector<ItemId> before);

    /// How often something was noted since changes were taken.
    std::size_t notes() const { return noted; }

    /// What is different in the model now; forgets it. All ids up to `lastGiven` are known then. A menu that
    /// is filled with what it had may be named too, when something else came and went before.
    MenuChanges take(const MenuModel& model, ItemId lastGiven);

private:
    struct Touched {
        MenuReshape reshape;
        std::optional<std::vector<ItemId>> before; // where it was filled anew
    };
    bool isReshaped(const MenuModel& model, ItemId owner, const Touched& menu) const;
    bool isDifferent(const MenuModel& model, ItemId id, const ItemBefore& before) const;
    bool hasCome(const MenuItem& item) const;

    ItemId lastKnown = kStatusMenuId;
    std::size_t noted = 0;
    std::map<ItemId, ItemBefore> items;
    std::map<ItemId, Touched> menus;
};

} // namespace Kest::App
