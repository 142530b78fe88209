// Passes the events of AppKit's menus to C++.
#pragma once

#include "app/MenuModel.h"

#import <AppKit/AppKit.h>

namespace Kest::AppKit {

/// Gets the events of the menus from a `KestMenuBridge`. A submenu is identified by the id of its item in the
/// parent menu, the status menu by `kStatusMenuId`. Main thread only.
class MenuListener {
public:
    virtual ~MenuListener() = default;
    virtual void itemChosen(App::ItemId id) = 0;
    /// Called before the menu opens, and sometimes although it does not open. The menu's items may be changed
    /// in this call, but not in `menuWillOpen` and `menuDidClose`.
    virtual void menuNeedsUpdate(App::ItemId id) = 0;
    /// Called when the menu opens, just before or just after it is displayed.
    virtual void menuWillOpen(App::ItemId id) = 0;
    /// Called when the menu has closed. If the user has chosen an item, `itemChosen` is called afterwards.
    virtual void menuDidClose(App::ItemId id) = 0;
};

/// Stores `id`, the item's id in the model, as the represented object of `item`.
void setId(NSMenuItem* item, App::ItemId id);
/// Returns the id that `setId` has stored in the item; `kStatusMenuId` if no id is stored.
App::ItemId idOf(NSMenuItem* item);
/// Returns the id of the item that has this submenu; `kStatusMenuId` for a menu without such an item.
App::ItemId idOf(NSMenu* menu);

} // namespace Kest::AppKit

/// The target of all items and the delegate of all menus. Passes their events to the listener. Main thread
/// only.
@interface KestMenuBridge : NSObject {
@private
    Kest::AppKit::MenuListener* listener;
}
/// The listener must exist until `disconnect` is called.
- (id)initWithListener:(Kest::AppKit::MenuListener*)menuListener;
/// Ends all calls of the listener. Later events are ignored.
- (void)disconnect;

- (void)chooseItem:(NSMenuItem*)item;
/// Returns NO, because no item has a key equivalent. Without this method, AppKit would send
/// `menuNeedsUpdate:` each time a key is pressed.
- (BOOL)menuHasKeyEquivalent:(NSMenu*)menu forEvent:(NSEvent*)event target:(id*)target action:(SEL*)action;
- (void)menuNeedsUpdate:(NSMenu*)menu;
- (void)menuWillOpen:(NSMenu*)menu;
- (void)menuDidClose:(NSMenu*)menu;
@end
