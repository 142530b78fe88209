// An interface for objects that observe the menu in addition to the front end.
#pragma once

#include "app/MenuChanges.h"

#include <string>

namespace Kest::App {

/// Main thread only.
class MenuObserver {
public:
    virtual ~MenuObserver() = default;
    /// Called after the front end's `menuChanged`, with the same changes.
    virtual void menuChanged(const MenuChanges& changes) = 0;
    /// Called when an abort has ended and the menu is updated; `failure` is empty when it is complete.
    virtual void abortEnded(int pid, const std::string& failure) = 0;
};

} // namespace Kest::App
