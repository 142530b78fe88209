// SIGTERM, SIGINT and SIGHUP in AppKit's loop.
#pragma once

#include "platform/posix/MainLoop.h"

#import <Foundation/Foundation.h>
#include <functional>

@class KestSignalObserver;

namespace Kest::AppKit {

/// One for each process. Calls `ended` on the main thread when the first of the signals has come; a second
/// one ends the process at once. Main thread only.
class SignalWatch {
public:
    explicit SignalWatch(std::function<void()> ended);
    ~SignalWatch();
    SignalWatch(const SignalWatch&) = delete;
    SignalWatch& operator=(const SignalWatch&) = delete;

private:
    Posix::MainLoop signals; // never runs: its descriptor is watched by the run loop
    KestSignalObserver* const observer;
};

} // namespace Kest::AppKit
