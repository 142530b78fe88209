// The agent's logo for the menu bar.
#pragma once

#import <AppKit/AppKit.h>

namespace Kest::AppKit {

/// The image of that name in the bundle, or else the logo itself under that name: black on nothing, 19 points
/// square, drawn at whatever resolution is asked for. Autoreleased.
NSImage* logoNamed(NSString* name);

} // namespace Kest::AppKit
