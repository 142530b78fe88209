// The boundary at which Objective-C calls C++. No C++ exception may pass through the frames of AppKit.
#pragma once

#include <functional>

namespace Kest::AppKit {

/// Calls `work`. If `work` throws a `std::exception`, logs one line that names `where` as its source. If
/// `work` throws anything else, the process ends. Any thread.
void stopExceptions(const char* where, const std::function<void()>& work) noexcept;

} // namespace Kest::AppKit
