// Where Objective-C calls C++: no C++ exception goes through the frames of AppKit.
#pragma once

#import <Foundation/Foundation.h>
#include <exception>

namespace Kest::AppKit {

/// Runs it; an exception becomes one log line.
template <typename Work>
void stopExceptions(const char* where, const Work& work) noexcept
{
    try {
        work();
    } catch (const std::exception& failure) {
        NSLog(@"%s: %s", where, failure.what());
    }
}

} // namespace Kest::AppKit
