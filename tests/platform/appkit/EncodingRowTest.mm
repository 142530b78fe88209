// The row of an encoding, as copies and as pixels.
#import "platform/appkit/EncodingRow.h"

#include "tests/platform/appkit/AppKitAgent.h"

namespace {

using namespace Kest;

NSString* name(KestEncodingRow* row) { return [[row nameLabel] stringValue]; }
NSString* percentage(KestEncodingRow* row) { return [[row percentageLabel] stringValue]; }

KestEncodingRow* rowAt(const std::string& percentage)
{
    return AppKit::encodingRow({"Film_Mix", percentage}, "Film_Mix " + percentage);
}

// How many columns of the bar have the colour of its filled end, of all that it has.
double filledPart(KestEncodingRow* row)
{
    NSWindow* window = [[[NSWindow alloc] initWithContentRect:[row frame]
                                                    styleMask:NSWindowStyleMaskBorderless
                                                      backing:NSBackingStoreBuffered
                                                        defer:NO] autorelease];
    [window setReleasedWhenClosed:NO];
    [window setContentView:row];
    [row display];
    [row lockFocus];
    NSBitmapImageRep* pixels = [[[NSBitmapImageRep alloc] initWithFocusedViewRect:[row bar]] autorelease];
    [row unlockFocus];
    [window close];

    const NSInteger middle = [pixels pixelsHigh] / 2;
    NSColor* wanted = [[NSColor selectedControlColor] colorUsingColorSpaceName:NSCalibratedRGBColorSpace];
    NSInteger filled = 0;
    for (NSInteger x = 0; x < [pixels pixelsWide]; ++x) {
        NSColor* is = [[pixels colorAtX:x y:middle] colorUsingColorSpaceName:NSCalibratedRGBColorSpace];
        filled += std::abs([is redComponent] - [wanted redComponent]) +
                      std::abs([is greenComponent] - [wanted greenComponent]) +
                      std::abs([is blueComponent] - [wanted blueComponent]) <
                  0.05;
    }
    return static_cast<double>(filled) / static_cast<double>([pixels pixelsWide]);
}

TEST(EncodingRow, IsAFreshCopyWithItsOwnLabels)
{
    KestEncodingRow* film = AppKit::encodingRow({"Film é", "42%"}, "Film é  42%");
    KestEncodingRow* failed = AppKit::encodingRow({"Other - Failed", ""}, "Other - Failed");
    EXPECT_NE(film, failed);
    EXPECT_NE([film nameLabel], [failed nameLabel]);
    EXPECT_TRUE([name(film) isEqual:@"Film é"] && [percentage(film) isEqual:@"42%"]);
    EXPECT_TRUE([name(failed) isEqual:@"Other - Failed"] && [percentage(failed) isEqual:@""]);
    EXPECT_NEAR([film progress], 0.42, 0.001);
    EXPECT_EQ([failed progress], 0);
    EXPECT_EQ([rowAt("250%") progress], 1);
}

TEST(EncodingRow, DrawsItsBarAsFarAsTheEncodingIs)
{
    for (const int progress : {0, 25, 50, 100})
        EXPECT_NEAR(filledPart(rowAt(std::to_string(progress) + "%")), progress / 100.0, 0.02);
}

} // namespace
