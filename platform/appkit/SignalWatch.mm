#import "platform/appkit/SignalWatch.h"

#include "platform/appkit/Boundary.h"
#import "platform/appkit/MainThread.h"

#include <utility>

@interface KestSignalObserver : NSObject {
@public
    Kest::Posix::MainLoop* signals;
    std::function<void()> ended;
    NSFileHandle* wakeUps;
}
- (void)waitForSignal;
- (void)signalCame:(NSNotification*)notification;
- (void)stop;
@end

@implementation KestSignalObserver

- (void)waitForSignal
{
    [wakeUps waitForDataInBackgroundAndNotifyForModes:Kest::AppKit::workingModes()];
}

- (void)signalCame:(NSNotification*)notification
{
    Kest::AppKit::stopExceptions("ending", [&] {
        signals->dispatchWakeUps();
        if (signals->isQuitting())
            ended();
    });
    [self waitForSignal];
}

- (void)stop
{
    [[NSNotificationCenter defaultCenter] removeObserver:self];
    [wakeUps release];
    wakeUps = nil;
}

@end

namespace Kest::AppKit {

SignalWatch::SignalWatch(std::function<void()> ended) : observer([[KestSignalObserver alloc] init])
{
    observer->signals = &signals;
    observer->ended = std::move(ended);
    observer->wakeUps = [[NSFileHandle alloc] initWithFileDescriptor:signals.wakeUpDescriptor()
                                                      closeOnDealloc:NO];
    [[NSNotificationCenter defaultCenter] addObserver:observer
                                             selector:@selector(signalCame:)
                                                 name:NSFileHandleDataAvailableNotification
                                               object:observer->wakeUps];
    [observer waitForSignal];
}

SignalWatch::~SignalWatch()
{
    [observer stop];
    [observer release];
}

} // namespace Kest::AppKit
