// The boundary at which AppKit calls C++. No C++ exception may pass through the stack frames of AppKit.
#pragma once

#include <functional>

namespace Kest::AppKit {

/// Calls `work`. Catches a `std::exception` that `work` throws, and logs one line with `where` as the source.
/// If `work` throws anything else, the process ends. Any thread.
void stopExceptions(const char* where, const std::function<void()>& work) noexcept;

} // namespace Kest::AppKit
