// The menus that list the installed facilities (room layouts). The user chooses one for monitoring.
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

    /// Must be called before `menu` is shown. Rebuilds it if it is a facility menu, because facilities can be
    /// installed or removed at any time.
    void menuWillOpen(Menu& menu);

    /// Fills `menu` with the installed facilities, sorted by name, and marks the current facility. If the
    /// current facility is not installed, its item is red and at its sorted position.
    void rebuildFacilityList(Menu& menu);

    /// Makes the title of the sender's item the current facility, in the Backend. The mark changes when the
    /// menu opens the next time. Does nothing if the sender is not an item.
    void setFacility(Sender sender);

private:
    void addFacilityMenuItem(Menu& menu, const std::string& title, bool isChecked, bool isRed);

    const Outlets& outlets;
    Settings::Backend& backend;
};

} // namespace Kest::App
