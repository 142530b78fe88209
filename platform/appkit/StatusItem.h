// The handle on the menu.
#pragma once

#import <AppKit/AppKit.h>

namespace Kest::AppKit {

/// Main thread. Shows the menu where the system has such menus, until `removeStatusItem`.
[[nodiscard]] id showStatusItem(NSMenu* menu, NSImage* logo);
/// Main thread. Removes and releases it.
void removeStatusItem(id item);

} // namespace Kest::AppKit
