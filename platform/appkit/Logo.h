// The agent's logo for the menu bar.
#pragma once

#import <AppKit/AppKit.h>

namespace Kest::AppKit {

/// Returns the existing image `name`, for example of the bundle. If there is none, creates the logo as the
/// image `name` and returns it. The logo is black on transparent and 19 points square. It is drawn as
/// vectors, so it is sharp at any resolution. Autoreleased. Main thread.
NSImage* logoNamed(NSString* name);

} // namespace Kest::AppKit
