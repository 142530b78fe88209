// The Mac's own classes can do all that is wanted.
#import "platform/appkit/MenuItemClass.h"

namespace Kest::AppKit {

Class menuItemClass() { return [NSMenuItem class]; }
Class menuClass() { return [NSMenu class]; }

} // namespace Kest::AppKit
