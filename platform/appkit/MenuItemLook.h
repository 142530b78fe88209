// How one item looks.
#pragma once

#include "app/MenuModel.h"

#import <AppKit/AppKit.h>

// What an NSMenuItem of the Mac has and one of GNUstep lacks; asked for by `instancesRespondToSelector:`.
@protocol KestMenuItemAbilities
- (void)setHidden:(BOOL)hidden;
- (BOOL)isHidden;
- (void)setView:(NSView*)view;
- (NSView*)view;
@end

namespace Kest::AppKit {

/// Where they cannot, the menu does without its hidden items.
bool itemsCanHide();
/// Where they cannot, an encoding's title tells its progress.
bool itemsCanHaveViews();

/// Gives an item everything that is seen of it but its submenu. The row of an encoding is a fresh view each
/// time. Main thread only.
void applyLook(NSMenuItem* item, const App::ItemProperties& look);

} // namespace Kest::AppKit
