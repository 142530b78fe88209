// The view of a menu item that shows an encoding: name, percentage and progress bar.
#pragma once

#include "app/MenuModel.h"

#import <AppKit/AppKit.h>
#include <string>

/// Shows the name, the percentage, a progress bar below them, and the arrow that marks a submenu. AppKit
/// draws no arrow for an item with a view. Main thread only.
@interface KestEncodingRow : NSView {
    CGFloat progress;
}
/// The fraction of the bar that is filled, 0 to 1. It is not archived: an unarchived row has the value 0.
@property(nonatomic) CGFloat progress;
- (NSTextField*)nameLabel;
- (NSTextField*)percentageLabel;
/// Returns the frame of the bar with its unfilled part, in the row's coordinates.
- (NSRect)bar;
/// Returns the frame of the arrow, in the row's coordinates.
- (NSRect)arrow;
/// Returns whether the menu highlights the item that has this view. Returns NO if views of this system have
/// no `enclosingMenuItem`, as with GNUstep.
- (BOOL)isSelected;
/// Sets the text colour of both labels according to `isSelected`.
- (void)colorLabels;
@end

/// A subview of a `KestEncodingRow`. Draws the bar and the arrow of that row, above its selection.
@interface KestEncodingBar : NSView
@end

namespace Kest::AppKit {

/// Returns a new row for an encoding with the state `labels`. The bar is empty if there is no percentage.
/// `accessibilityText` is the accessibility label of the row. Autoreleased. Main thread.
KestEncodingRow* encodingRow(const App::EncodingState& labels, const std::string& accessibilityText);

} // namespace Kest::AppKit
