// The agent's logo for the menu bar.
#pragma once

#import <AppKit/AppKit.h>

namespace Kest::AppKit {

/// Returns the bundle's image of that name, or else the drawn logo under that name: black on transparent, 19
/// points square, drawn at any resolution. Autoreleased.
NSImage* logoNamed(NSString* name);

} // namespace Kest::AppKit
