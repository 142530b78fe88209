// The Mac's own items can do all that is wanted.
#import "platform/appkit/MenuItemClass.h"

namespace Kest::AppKit {

Class menuItemClass() { return [NSMenuItem class]; }

} // namespace Kest::AppKit
