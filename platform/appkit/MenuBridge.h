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
    virtual void menuWillOpen(App::ItemId id) = 0;
    virtual void menuDidClose(App::ItemId id) = 0;
};

/// An item carries its id as the object that it represents.
void setId(NSMenuItem* item, App::ItemId id);
App::ItemId idOf(NSMenuItem* item);
/// A submenu has the id of its item; a menu that is in none, that of the status menu.
App::ItemId idOf(NSMenu* menu);

} // namespace Kest::AppKit

/// The target of all items and the delegate of all submenus. Main thread only.
@interface KestMenuBridge : NSObject {
@private
    Kest::AppKit::MenuListener* listener;
}
/// The listener is asked nothing more once `disconnect` has been called.
- (id)initWithListener:(Kest::AppKit::MenuListener*)menuListener;
- (void)disconnect;

- (void)chooseItem:(NSMenuItem*)item;
- (void)menuWillOpen:(NSMenu*)menu;
- (void)menuDidClose:(NSMenu*)menu;
@end
