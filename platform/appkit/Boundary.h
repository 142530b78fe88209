// The boundary where Objective-C calls C++: no C++ exception passes through the frames of AppKit.
#pragma once

#include <functional>

namespace Kest::AppKit {

/// Runs `work`; a `std::exception` becomes one log line that names `where`. Any thread.
void stopExceptions(const char* where, const std::function<void()>& work) noexcept;

} // namespace Kest::AppKit
