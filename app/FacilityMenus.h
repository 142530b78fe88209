// The menus of installed rooms, one of which is the monitoring facility.
#pragma once

#include "app/InterfaceDescription.h"
#include "app/Sender.h"

namespace Kest::Settings {
class Backend;
}

namespace Kest::App {

/// Main thread only; both references outlive it.
class FacilityMenus {
public:
    FacilityMenus(const Outlets& menuOutlets, Settings::Backend& settingsBackend)
        : outlets(menuOutlets), backend(settingsBackend)
    {}

    /// Rebuilds a facility menu, since the folder of facilities may change at any time. Ignores other menus.
    void menuWillOpen(Menu& menu);

    /// Fills the menu with the installed facilities in sorted order and checks the current one. A current
    /// facility that is no longer installed is shown in red at its sorted position.
    void rebuildFacilityList(Menu& menu);

    /// Stores the chosen item's title. The check mark is updated when the menu opens the next time.
    void setFacility(Sender sender);

private:
    void addFacilityMenuItem(Menu& menu, const std::string& title, bool isChecked, bool isRed);

    const Outlets& outlets;
    Settings::Backend& backend;
};

} // namespace Kest::App
