// The boundary at which Objective-C calls C++. No C++ exception may pass through the frames of AppKit.
#pragma once

#include <functional>

namespace Kest::AppKit {

/// Calls `work`. If it throws a `std::exception`, logs one line with the name `where`. Any other exception
/// ends the process. Any thread.
void stopExceptions(const char* where, const std::function<void()>& work) noexcept;

} // namespace Kest::AppKit
