// The system's part in drawing an encoding's row: its colours and its selection.
#pragma once

#import "platform/appkit/EncodingRow.h"

namespace Kest::AppKit {

/// Each contrasts with the menu, or with the selection, in every appearance of the system.
struct RowColors {
    NSColor* text;
    NSColor* barFrame;
    NSColor* barFill;
};

/// Main thread. Autoreleased.
RowColors rowColors(bool selected);

/// Main thread, once for each copy of a row. AppKit draws no selection behind a view: the row draws its own.
void addSelection(KestEncodingRow* row);

} // namespace Kest::AppKit
