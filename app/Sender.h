// The sender of an action.
#pragma once

#include "app/MenuModel.h"

namespace Kest::App {

/// The sender is an item, the delegate (`KestSettingsAppDelegate`), or nobody. If the delegate is the sender,
/// the action shows the stored value.
class Sender {
public:
    /// Null means that there is no sender.
    Sender(MenuItem* chosen) : item(chosen) {}
    static Sender delegate()
    {
        Sender self(nullptr);
        self.isTheDelegate = true;
        return self;
    }

    bool isDelegate() const { return isTheDelegate; }
    MenuItem* menuItem() const { return item; }
    /// Returns the item's tag; 0 if the sender is not an item.
    int tag() const { return item == nullptr ? 0 : item->tag(); }

private:
    MenuItem* item;
    bool isTheDelegate = false;
};

} // namespace Kest::App
