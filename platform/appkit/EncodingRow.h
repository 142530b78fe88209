// The view of an encoding's item: name, percentage and progress bar.
#pragma once

#include "app/MenuModel.h"

#import <AppKit/AppKit.h>
#include <string>

/// Contains the name, the percentage, a progress bar below them, and the arrow of a submenu. The row draws
/// the arrow because AppKit draws none for an item with a view. Main thread only.
@interface KestEncodingRow : NSView {
    CGFloat progress;
}
/// The fraction of the bar that is filled, 0 to 1. A copy of a row has the value 0.
@property(nonatomic) CGFloat progress;
- (NSTextField*)nameLabel;
- (NSTextField*)percentageLabel;
/// Returns the frame of the whole bar, in the row's coordinates.
- (NSRect)bar;
/// Returns the frame of the arrow, in the row's coordinates.
- (NSRect)arrow;
/// Returns whether the menu highlights the item that has this view. Returns NO if views have no
/// `enclosingMenuItem`.
- (BOOL)isSelected;
/// Sets the colour of the labels according to `isSelected`.
- (void)colorLabels;
@end

/// Draws the bar and the arrow of its superview, a `KestEncodingRow`. This subview is drawn over the row's
/// selection.
@interface KestEncodingBar : NSView
@end

namespace Kest::AppKit {

/// Returns a new row that displays the name, the percentage and the progress in `labels`. `accessibilityText`
/// is the accessibility label of the row. Autoreleased. Main thread.
KestEncodingRow* encodingRow(const App::EncodingState& labels, const std::string& accessibilityText);

} // namespace Kest::AppKit
