// Where Objective-C calls C++: no C++ exception goes through the frames of AppKit.
#pragma once

#include <functional>

namespace Kest::AppKit {

/// Runs it; an exception becomes one log line. Any thread.
void stopExceptions(const char* where, const std::function<void()>& work) noexcept;

} // namespace Kest::AppKit
