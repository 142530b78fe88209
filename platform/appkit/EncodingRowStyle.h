// The platform-specific parts of an encoding's row: the colours and the selection.
#pragma once

#import "platform/appkit/EncodingRow.h"

namespace Kest::AppKit {

/// The colours of a row. They contrast with the menu's background, or with the selection in a selected row,
/// in light and dark appearance.
struct RowColors {
    NSColor* text;
    NSColor* barFrame;
    NSColor* barFill;
};

/// Returns the colours of a selected or an unselected row. Autoreleased. Main thread.
RowColors rowColors(bool selected);

/// Adds to `row` the view that draws its selection: AppKit draws none for an item with a view. Call it once
/// for each row. Does nothing with GNUstep, where the row draws the selection itself. Main thread.
void addSelectionView(KestEncodingRow* row);

} // namespace Kest::AppKit
