// Sets the properties of an NSMenuItem.
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

/// Returns whether an NSMenuItem has `setHidden:`. If not, the menu must omit hidden items.
bool itemsCanHide();
/// Returns whether an NSMenuItem has `setView:`. If not, `applyProperties` adds an encoding's percentage to
/// its title.
bool itemsCanHaveViews();

/// Sets tag, title, state and `enabled` of `item`; also `hidden` and the view, if NSMenuItem has these. If
/// `props` has an encoding, each call sets a new view. For a separator, sets only the tag and `hidden`. Main
/// thread.
void applyProperties(NSMenuItem* item, const App::ItemProperties& props);

} // namespace Kest::AppKit
