// Applies the properties of an item to an NSMenuItem.
#pragma once

#include "app/MenuModel.h"

#import <AppKit/AppKit.h>

// Methods that NSMenuItem has on the Mac but not in GNUstep. Test with `instancesRespondToSelector:` before a
// call.
@protocol KestMacMenuItem
- (void)setHidden:(BOOL)hidden;
- (BOOL)isHidden;
- (void)setView:(NSView*)view;
- (NSView*)view;
@end

namespace Kest::AppKit {

/// Returns whether NSMenuItem can be hidden. If not, the menu must omit hidden items.
bool itemsCanHide();
/// Returns whether NSMenuItem can have a view. If not, the title of an encoding contains its progress.
bool itemsCanHaveViews();

/// Applies all visible properties to an item. Gives the item of an encoding a new view each time. A separator
/// gets only its tag and whether it is hidden. Main thread.
void applyProperties(NSMenuItem* item, const App::ItemProperties& props);

} // namespace Kest::AppKit
