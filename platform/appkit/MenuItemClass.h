// The class of the menu's items.
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

/// NSMenuItem, or one made from it that can what it cannot.
Class menuItemClass();

} // namespace Kest::AppKit
