// What a front end must do to show another moment of the menu.
#pragma once

#include "app/MenuSnapshot.h"

#include <vector>

namespace Kest::App {

struct MenuDifference {
    std::vector<ItemId> changedItems;  // in both, with other properties; from the top down
    std::vector<ItemId> reshapedMenus; // items came, went or moved; named by their owner's id
};

/// Items are the same when their ids are. An item that came or went is told of by its menu alone.
MenuDifference diff(const ItemSnapshot& shown, const ItemSnapshot& now);

} // namespace Kest::App
