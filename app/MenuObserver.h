// The interface of an object that, in addition to the front end, is notified when the menu changes.
#pragma once

#include "app/MenuChanges.h"

#include <string>

namespace Kest::App {

/// Main thread only.
class MenuObserver {
public:
    virtual ~MenuObserver() = default;
    /// Called after each call of the front end's `menuChanged`, with the same changes.
    virtual void menuChanged(const MenuChanges& changes) = 0;
    /// Called after the abort of the encoding whose process has the id `pid` has ended and the menu is
    /// updated. `failure` is empty if the abort is complete; otherwise it is the reason why the abort is not
    /// complete.
    virtual void abortEnded(int pid, const std::string& failure) = 0;
};

} // namespace Kest::App
