// The menus that list the installed facilities; the user chooses one of them as the monitoring facility.
#pragma once

#include "app/InterfaceDescription.h"
#include "app/Sender.h"

namespace Kest::Settings {
class Backend;
}

namespace Kest::App {

/// Main thread only. Both references must outlive this object.
class FacilityMenus {
public:
    FacilityMenus(const Outlets& menuOutlets, Settings::Backend& settingsBackend)
        : outlets(menuOutlets), backend(settingsBackend)
    {}

    /// Rebuilds `menu` if it is a facility menu, because facilities can be installed or removed at any time.
    /// Does nothing for other menus.
    void menuWillOpen(Menu& menu);

    /// Fills `menu` with the installed facilities in sorted order and marks the current facility. If the
    /// current facility is no longer installed, its item is red and at its sorted position.
    void rebuildFacilityList(Menu& menu);

    /// Saves the title of the sender's item as the facility. The mark changes when the menu opens the next
    /// time.
    void setFacility(Sender sender);

private:
    void addFacilityMenuItem(Menu& menu, const std::string& title, bool isChecked, bool isRed);

    const Outlets& outlets;
    Settings::Backend& backend;
};

} // namespace Kest::App
