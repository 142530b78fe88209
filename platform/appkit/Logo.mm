#import "platform/appkit/Logo.h"

#include "app/LogoStrokes.h"

@interface KestLogoDrawing : NSObject
+ (void)draw:(NSCustomImageRep*)image;
@end

@implementation KestLogoDrawing
+ (void)draw:(NSCustomImageRep*)image
{
    const CGFloat scale = [image size].width / Kest::App::kLogoCanvas;
    const auto toPoint = [scale](Kest::App::LogoPoint p) { // AppKit's y axis points up
        return NSMakePoint(p.x * scale, (Kest::App::kLogoCanvas - p.y) * scale);
    };
    NSBezierPath* path = [NSBezierPath bezierPath];
    [path setLineWidth:2 * Kest::App::kLogoHalfWidth * scale];
    [path setLineCapStyle:NSRoundLineCapStyle];
    for (const auto& stroke : Kest::App::kLogoStrokes) {
        [path moveToPoint:toPoint(stroke.from)];
        NSPoint end = toPoint(stroke.to);
        end.x += 0.01; // a stroke of length 0 has no round ends
        [path lineToPoint:end];
    }
    [[NSColor blackColor] set];
    [path stroke];
}
@end

namespace Kest::AppKit {
namespace {

constexpr CGFloat kSide = 19; // points, as in the image's name

} // namespace

NSImage* logoNamed(NSString* name)
{
    NSImage* logo = [NSImage imageNamed:name];
    if (logo == nil) {
        logo = [[[NSImage alloc] initWithSize:NSMakeSize(kSide, kSide)] autorelease];
        NSCustomImageRep* drawn = [[NSCustomImageRep alloc] initWithDrawSelector:@selector(draw:)
                                                                        delegate:[KestLogoDrawing class]];
        [drawn setSize:NSMakeSize(kSide, kSide)];
        [logo addRepresentation:drawn];
        [drawn release];
        [logo setName:name];
    }
    return logo;
}

} // namespace Kest::AppKit
