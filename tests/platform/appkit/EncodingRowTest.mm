#import "platform/appkit/EncodingRow.h"

#include <gtest/gtest.h>

static BOOL isHighlighted = NO;

// A row that is its own menu item, as only the Mac's menu items have views.
@implementation KestEncodingRow (Highlighted)
- (id)enclosingMenuItem
{
    return self;
}
- (BOOL)isHighlighted
{
    return isHighlighted;
}
@end

namespace {

// The share of a rectangle of the row that is drawn in a colour, 0 to 1.
double drawnIn(NSColor* color, KestEncodingRow* row, NSRect rectangle)
{
    NSWindow* window = [[[NSWindow alloc] initWithContentRect:[row frame]
                                                    styleMask:NSWindowStyleMaskBorderless
                                                      backing:NSBackingStoreBuffered
                                                        defer:NO] autorelease];
    [window setContentView:row];
    [row display];
    [row lockFocus];
    NSBitmapImageRep* pixels = [[[NSBitmapImageRep alloc] initWithFocusedViewRect:rectangle] autorelease];
    [row unlockFocus];

    NSColor* wanted = [color colorUsingColorSpaceName:NSCalibratedRGBColorSpace];
    double drawn = 0;
    for (NSInteger y = 0; y < [pixels pixelsHigh]; ++y)
        for (NSInteger x = 0; x < [pixels pixelsWide]; ++x) {
            NSColor* is = [[pixels colorAtX:x y:y] colorUsingColorSpaceName:NSCalibratedRGBColorSpace];
            drawn += std::abs([is redComponent] - [wanted redComponent]) < 0.02 &&
                     std::abs([is blueComponent] - [wanted blueComponent]) < 0.02;
        }
    return drawn / static_cast<double>([pixels pixelsHigh] * [pixels pixelsWide]);
}

TEST(EncodingRow, DrawsItsBarAndTheArrowOfItsSubmenuInTheColorsOfItsItem)
{
    for (const int percent : {0, 25, 250})
        for (const BOOL highlighted : {NO, YES}) {
            isHighlighted = highlighted;
            NSColor* text = highlighted ? [NSColor selectedMenuItemTextColor] : [NSColor controlTextColor];
            NSColor* bar = highlighted ? text : [NSColor selectedControlColor];
            KestEncodingRow* row = Kest::AppKit::encodingRow({"Film", percent}, "Film");
            EXPECT_NEAR(drawnIn(bar, row, NSInsetRect([row bar], 0, 2)), std::min(percent, 100) / 100.0,
                        0.02);
            EXPECT_GT(drawnIn(text, row, [row arrow]), 0);
            EXPECT_TRUE([[[row nameLabel] textColor] isEqual:text]);
        }
}

} // namespace
