// The row of an encoding: its name, its percentage and a bar.
#pragma once

#include "app/MenuModel.h"

#import <AppKit/AppKit.h>
#include <string>

/// Draws the bar, for the percentage that its label says, and the selection behind all. It has no state but
/// its labels, so that a copy of it is whole.
@interface KestEncodingRow : NSView
- (NSTextField*)nameLabel;
- (NSTextField*)percentageLabel;
/// How much of the bar is filled, 0 to 1.
- (CGFloat)progress;
/// Where the bar is, filled and not.
- (NSRect)bar;
@end

namespace Kest::AppKit {

/// A deep copy of the one row that is the template, with these labels, and what it says to those who cannot
/// see it. Main thread only. Autoreleased.
KestEncodingRow* encodingRow(const App::EntryView& labels, const std::string& spoken);

} // namespace Kest::AppKit
