// The target and the delegate of AppKit's menus.
#pragma once

#include "app/MenuModel.h"

#import <AppKit/AppKit.h>

namespace Kest::AppKit {

/// Receives the events of the menus. Main thread only.
class MenuListener {
public:
    virtual ~MenuListener() = default;
    virtual void itemChosen(App::ItemId id) = 0;
    /// The menu may be about to open. Items may change in this call, but not in the two below.
    virtual void menuNeedsUpdate(App::ItemId id) = 0;
    virtual void menuWillOpen(App::ItemId id) = 0;
    /// The action of an item chosen from the menu follows.
    virtual void menuDidClose(App::ItemId id) = 0;
};

/// The id of an item is stored as its represented object.
void setId(NSMenuItem* item, App::ItemId id);
App::ItemId idOf(NSMenuItem* item);
/// Returns the id of the item that the submenu belongs to; `kStatusMenuId` for a menu without a parent.
App::ItemId idOf(NSMenu* menu);

} // namespace Kest::AppKit

/// The target of all items and the delegate of all menus. An opening menu sends it `menuNeedsUpdate:` and
/// `menuWillOpen:`, a closing one `menuDidClose:`. Main thread only.
@interface KestMenuBridge : NSObject {
@private
    Kest::AppKit::MenuListener* listener;
}
/// The listener is not called after `disconnect`.
- (id)initWithListener:(Kest::AppKit::MenuListener*)menuListener;
- (void)disconnect;

- (void)chooseItem:(NSMenuItem*)item;
/// Returns NO: no item has a key equivalent. Without it AppKit would send `menuNeedsUpdate:` for each key.
- (BOOL)menuHasKeyEquivalent:(NSMenu*)menu forEvent:(NSEvent*)event target:(id*)target action:(SEL*)action;
- (void)menuNeedsUpdate:(NSMenu*)menu;
- (void)menuWillOpen:(NSMenu*)menu;
- (void)menuDidClose:(NSMenu*)menu;
@end
