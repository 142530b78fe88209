// The row of an encoding: its name, its percentage and a bar.
#pragma once

#include "app/MenuModel.h"

#import <AppKit/AppKit.h>
#include <string>

/// A name and a percentage, below them a bar that is filled as far, and the arrow of a submenu, which AppKit
/// draws for no item with a view.
@interface KestEncodingRow : NSView {
    CGFloat progress;
}
/// How much of the bar is filled, 0 to 1; a copy of the row starts with 0.
@property(nonatomic) CGFloat progress;
- (NSTextField*)nameLabel;
- (NSTextField*)percentageLabel;
/// The whole bar, filled or not, and the arrow, in the row's coordinates.
- (NSRect)bar;
- (NSRect)arrow;
/// Whether the item that it is the view of is highlighted.
- (BOOL)isSelected;
/// Gives the labels the colour that goes with `isSelected`.
- (void)colorLabels;
@end

/// Draws the bar and the arrow of the row that it is in, above the row's selection.
@interface KestEncodingBar : NSView
@end

namespace Kest::AppKit {

/// A deep copy of the one row that is the template, with these labels, and what it says to those who cannot
/// see it. Main thread only. Autoreleased.
KestEncodingRow* encodingRow(const App::EntryView& labels, const std::string& spoken);

} // namespace Kest::AppKit
