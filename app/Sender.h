// The sender of an action.
#pragma once

#include "app/MenuModel.h"

namespace Kest::App {

/// A chosen item, or the delegate at start-up, when stored values are shown and not changed, or neither.
class Sender {
public:
    Sender(MenuItem* chosen) : item(chosen) {}
    static Sender delegate()
    {
        Sender self(nullptr);
        self.isTheDelegate = true;
        return self;
    }

    bool isDelegate() const { return isTheDelegate; }
    MenuItem* menuItem() const { return item; }
    /// Returns the item's tag; 0 without an item.
    int tag() const { return item == nullptr ? 0 : item->tag(); }

private:
    MenuItem* item;
    bool isTheDelegate = false;
};

} // namespace Kest::App
