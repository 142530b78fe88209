// This file is C++ because Objective-C++ with GNUstep's runtime does not catch C++ exceptions.
#include "platform/appkit/Boundary.h"

#include "log/Log.h"

#include <exception>

namespace Kest::AppKit {

void stopExceptions(const char* where, const std::function<void()>& work) noexcept
{
    try {
        work();
    } catch (const std::exception& failure) {
        Lct::Log(Lct::eLogError, where, "%s", failure.what());
    }
}

} // namespace Kest::AppKit
