// The platform-specific parts of an encoding's row: its colours and its selection.
#pragma once

#import "platform/appkit/EncodingRow.h"

namespace Kest::AppKit {

/// Each colour contrasts with the menu, or with the selection, in every appearance of the system.
struct RowColors {
    NSColor* text;
    NSColor* barFrame;
    NSColor* barFill;
};

/// Autoreleased. Main thread.
RowColors rowColors(bool selected);

/// Adds the selection to a row, because AppKit draws none behind a view. Call it once for each copy. Main
/// thread.
void addSelection(KestEncodingRow* row);

} // namespace Kest::AppKit
