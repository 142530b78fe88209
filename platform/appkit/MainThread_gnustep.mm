// GNUstep's main thread: no dispatch library, and a screen that may be missing.
#include "log/Output.h"
#import "platform/appkit/MainThread.h"

@interface KestCall : NSObject {
@public
    void (*function)(void*);
    void* context;
}
- (void)call:(id)unused;
@end

@implementation KestCall
- (void)call:(id)unused
{
    function(context);
}
@end

namespace Kest::AppKit {

bool connectToScreen()
{
    @try {
        return [NSApplication sharedApplication] != nil;
    } @catch (NSException* failure) {
        Lct::printError("No screen (%s); kest-settings-terminal shows the same menu in a terminal.\n",
                        [[failure reason] UTF8String]);
        return false;
    }
}

// NSApplicationMain looks for a bundle's description first; there is no bundle.
int runApplication(int, const char**)
{
    [NSApp run];
    return 0;
}

void callOnMainThread(void (*function)(void*), void* context)
{
    @autoreleasepool { // the thread may have none
        KestCall* call = [[[KestCall alloc] init] autorelease];
        call->function = function;
        call->context = context;
        [call performSelectorOnMainThread:@selector(call:)
                               withObject:nil
                            waitUntilDone:NO
                                    modes:workingModes()];
    }
}

} // namespace Kest::AppKit
