// GNUstep's colours, and a selection that fills the row.
#import "platform/appkit/EncodingRowStyle.h"

@interface KestEncodingRow (Selection)
@end

@implementation KestEncodingRow (Selection)

- (void)drawRect:(NSRect)dirty
{
    [self colorLabels];
    if (![self isSelected])
        return;
    [[NSColor selectedMenuItemColor] set];
    NSRectFill([self bounds]);
}

@end

namespace Kest::AppKit {

RowColors rowColors(bool selected)
{
    if (selected) {
        NSColor* text = [NSColor selectedMenuItemTextColor];
        return {text, text, text};
    }
    return {[NSColor controlTextColor], [NSColor gridColor], [NSColor selectedControlColor]};
}

void addSelectionView(KestEncodingRow*) {}

} // namespace Kest::AppKit
