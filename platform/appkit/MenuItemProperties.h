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

/// Applies the properties to an item. If the properties are those of an encoding, each call gives the item a
/// new view. For a separator, applies only `tag` and `hidden`. Main thread.
void applyProperties(NSMenuItem* item, const App::ItemProperties& props);

} // namespace Kest::AppKit
