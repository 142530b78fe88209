// The row of an encoding: name, percentage and progress bar.
#pragma once

#include "app/MenuModel.h"

#import <AppKit/AppKit.h>
#include <string>

/// Contains a name, a percentage, a progress bar below them, and the arrow of a submenu, which AppKit does
/// not draw for an item with a view.
@interface KestEncodingRow : NSView {
    CGFloat progress;
}
/// The filled part of the bar, 0 to 1; 0 in a copy of the row.
@property(nonatomic) CGFloat progress;
- (NSTextField*)nameLabel;
- (NSTextField*)percentageLabel;
/// The frames of the whole bar and of the arrow, in the row's coordinates.
- (NSRect)bar;
- (NSRect)arrow;
/// Returns whether the item that has this view is highlighted.
- (BOOL)isSelected;
/// Sets the labels' colour, which depends on `isSelected`.
- (void)colorLabels;
@end

/// Draws the bar and the arrow of its superview, a row, above the row's selection.
@interface KestEncodingBar : NSView
@end

namespace Kest::AppKit {

/// Returns a deep copy of the template row with these labels; `accessibilityText` is its accessibility label.
/// Autoreleased. Main thread only.
KestEncodingRow* encodingRow(const App::EntryView& labels, const std::string& accessibilityText);

} // namespace Kest::AppKit
