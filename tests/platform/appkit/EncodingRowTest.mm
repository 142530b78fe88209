// The row of an encoding, as copies and as pixels.
#import "platform/appkit/EncodingRow.h"

#include <gtest/gtest.h>

namespace {

BOOL isHighlighted = NO;

} // namespace

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
    [window setReleasedWhenClosed:NO];
    [window setContentView:row];
    [row display];
    [row lockFocus];
    NSBitmapImageRep* pixels = [[[NSBitmapImageRep alloc] initWithFocusedViewRect:rectangle] autorelease];
    [row unlockFocus];
    [window close];

    NSColor* wanted = [color colorUsingColorSpaceName:NSCalibratedRGBColorSpace];
    double drawn = 0;
    for (NSInteger y = 0; y < [pixels pixelsHigh]; ++y)
        for (NSInteger x = 0; x < [pixels pixelsWide]; ++x) {
            NSColor* is = [[pixels colorAtX:x y:y] colorUsingColorSpaceName:NSCalibratedRGBColorSpace];
            drawn += std::abs([is redComponent] - [wanted redComponent]) +
                         std::abs([is greenComponent] - [wanted greenComponent]) +
                         std::abs([is blueComponent] - [wanted blueComponent]) <
                     0.05;
        }
    return drawn / static_cast<double>([pixels pixelsHigh] * [pixels pixelsWide]);
}

double filledPart(KestEncodingRow* row, NSColor* color)
{
    return drawnIn(color, row, NSInsetRect([row bar], 0, 2));
}

TEST(EncodingRow, IsACopyWithItsOwnLabelsAndBar)
{
    KestEncodingRow* before = Kest::AppKit::encodingRow({"Other", {}, true}, "Other - Failed");
    for (const int percent : {0, 25, 250}) {
        KestEncodingRow* row = Kest::AppKit::encodingRow({"Film é", percent}, "Film é");
        EXPECT_TRUE([[[row nameLabel] stringValue] isEqual:@"Film é"]);
        EXPECT_NEAR(filledPart(row, [NSColor selectedControlColor]), std::min(percent, 100) / 100.0, 0.02);
    }
    EXPECT_TRUE([[[before nameLabel] stringValue] isEqual:@"Other - Failed"]);
    EXPECT_TRUE([[[before percentageLabel] stringValue] isEqual:@""]);
}

TEST(EncodingRow, DrawsTheArrowOfItsSubmenuAndTheSelectionOfItsItem)
{
    KestEncodingRow* row = Kest::AppKit::encodingRow({"Film é", 40}, "Film é");
    NSColor* selection = [NSColor selectedMenuItemColor];
    NSColor* ink = [NSColor selectedMenuItemTextColor];
    const NSRect margin = NSMakeRect(6, 6, 6, 6);
    EXPECT_GT(drawnIn([NSColor controlTextColor], row, [row arrow]), 0);
    EXPECT_EQ(drawnIn(selection, row, margin), 0);
    isHighlighted = YES;
    EXPECT_EQ(drawnIn(selection, row, margin), 1);
    EXPECT_GT(drawnIn(ink, row, [row arrow]), 0);
    EXPECT_NEAR(filledPart(row, ink), 0.4, 0.02);
    EXPECT_TRUE([[[row nameLabel] textColor] isEqual:ink]);
    isHighlighted = NO;
}

} // namespace
