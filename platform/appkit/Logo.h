// The agent's logo for the menu bar.
#pragma once

#import <AppKit/AppKit.h>

namespace Kest::AppKit {

/// Returns the image `name` of the bundle. If there is none, returns the logo, black on transparent and 19
/// points square, and registers it as the image `name`. The logo is drawn as vectors, so it is sharp at any
/// resolution. Autoreleased. Main thread.
NSImage* logoNamed(NSString* name);

} // namespace Kest::AppKit
