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
/// Returns whether an NSMenuItem has `setView:`. If not, the title of an encoding contains its percentage.
bool itemsCanHaveViews();

/// Sets tag, title, view, state, `enabled` and `hidden` of `item`. If items can have views, each call with an
/// encoding sets a new view. For a separator, sets only `tag` and `hidden`. Main thread.
void applyProperties(NSMenuItem* item, const App::ItemProperties& props);

} // namespace Kest::AppKit
