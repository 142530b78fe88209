#import "platform/appkit/MenuItemClass.h"

namespace Kest::AppKit {

Class menuItemClass() { return [NSMenuItem class]; }

} // namespace Kest::AppKit
