// The classes of the menu and its items.
#pragma once

#import <AppKit/AppKit.h>

// What an NSMenuItem of the Mac has and one of GNUstep lacks; asked for by `instancesRespondToSelector:`.
@protocol KestMenuItemAbilities
- (void)setHidden:(BOOL)hidden;
- (BOOL)isHidden;
- (void)setView:(NSView*)view;
- (NSView*)view;
@end

namespace Kest::AppKit {

/// NSMenuItem, or a subclass that adds what GNUstep's lacks.
Class menuItemClass();
/// NSMenu, or a subclass that sends its delegate what GNUstep's does not.
Class menuClass();

} // namespace Kest::AppKit
