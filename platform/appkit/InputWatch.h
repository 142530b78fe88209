// Watches a descriptor in AppKit's main loop.
#pragma once

#include <functional>

@class KestInputObserver;

namespace Kest::AppKit {

/// Calls `readable` in the main loop whenever the descriptor has input, also while a menu or a modal panel is
/// open. The descriptor must remain open while this object exists. Main thread only.
class InputWatch {
public:
    InputWatch(int descriptor, std::function<void()> readable);
    ~InputWatch();
    InputWatch(const InputWatch&) = delete;
    InputWatch& operator=(const InputWatch&) = delete;

private:
    KestInputObserver* const observer;
};

} // namespace Kest::AppKit
