// What AppKit's menus call.
#pragma once

#include "app/MenuModel.h"

#import <AppKit/AppKit.h>

namespace Kest::AppKit {

/// Hears what happens in the menu. Main thread only.
class MenuListener {
public:
    virtual ~MenuListener() = default;
    virtual void itemChosen(App::ItemId id) = 0;
    /// The menu may be about to open; the only one of the three in which items may change.
    virtual void menuNeedsUpdate(App::ItemId id) = 0;
    virtual void menuWillOpen(App::ItemId id) = 0;
    /// The action of an item that was chosen from the menu follows.
    virtual void menuDidClose(App::ItemId id) = 0;
};

/// An item carries its id as the object that it represents.
void setId(NSMenuItem* item, App::ItemId id);
App::ItemId idOf(NSMenuItem* item);
/// A submenu has the id of its item; a menu that is in none, that of the status menu.
App::ItemId idOf(NSMenu* menu);

} // namespace Kest::AppKit

/// The target of all items and the delegate of all menus. An opening menu sends it `menuNeedsUpdate:` and
/// `menuWillOpen:`, a closing one `menuDidClose:`. Main thread only.
@interface KestMenuBridge : NSObject {
@private
    Kest::AppKit::MenuListener* listener;
}
/// The listener is asked nothing more once `disconnect` has been called.
- (id)initWithListener:(Kest::AppKit::MenuListener*)menuListener;
- (void)disconnect;

- (void)chooseItem:(NSMenuItem*)item;
/// NO: no item has a key equivalent. Without it AppKit would send `menuNeedsUpdate:` for each key.
- (BOOL)menuHasKeyEquivalent:(NSMenu*)menu forEvent:(NSEvent*)event target:(id*)target action:(SEL*)action;
- (void)menuNeedsUpdate:(NSMenu*)menu;
- (void)menuWillOpen:(NSMenu*)menu;
- (void)menuDidClose:(NSMenu*)menu;
@end
