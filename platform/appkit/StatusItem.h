// The handle on the menu.
#pragma once

#import <AppKit/AppKit.h>

@class KestMenuBridge;

namespace Kest::AppKit {

/// Main thread. Puts the menu where the system has such menus. The item stays until it is released.
/// The bridge is the delegate of all submenus; it outlives the item.
[[nodiscard]] id showStatusItem(NSMenu* menu, NSImage* logo, KestMenuBridge* bridge);
/// Takes it away again.
void removeStatusItem(id item);

} // namespace Kest::AppKit
