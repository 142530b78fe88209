// Applies the properties of an item to an NSMenuItem.
#pragma once

#include "app/MenuModel.h"

#import <AppKit/AppKit.h>

// Methods of NSMenuItem on the Mac that GNUstep lacks; test with `instancesRespondToSelector:`.
@protocol KestMacMenuItem
- (void)setHidden:(BOOL)hidden;
- (BOOL)isHidden;
- (void)setView:(NSView*)view;
- (NSView*)view;
@end

namespace Kest::AppKit {

/// If false, the menu omits hidden items.
bool itemsCanHide();
/// If false, an encoding's title contains its progress.
bool itemsCanHaveViews();

/// Applies all visible properties of an item, except its submenu. An encoding gets a new view each time. Main
/// thread only.
void applyProperties(NSMenuItem* item, const App::ItemProperties& props);

} // namespace Kest::AppKit
