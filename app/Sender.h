// Who asks for an action.
#pragma once

#include "app/MenuModel.h"

namespace Kest::App {

/// A chosen item; or the delegate itself, at start-up, to have what is stored shown and not changed; or
/// nobody.
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
    /// 0 where there is no item.
    int tag() const { return item == nullptr ? 0 : item->tag(); }

private:
    MenuItem* item;
    bool isTheDelegate = false;
};

} // namespace Kest::App
