// The monitoring facility: which of the installed rooms it is.
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

    /// The folder of facilities may change at any time, so a facility menu is rebuilt whenever it opens.
    /// Other menus are left alone.
    void menuWillOpen(Menu& menu);

    /// The installed facilities in sorted order with the current one checked. A current facility that is not
    /// installed any more stands, red, where it would sort.
    void rebuildFacilityList(Menu& menu);

    /// Stores the chosen item's title. The check mark follows with the next opening.
    void setFacility(Sender sender);

private:
    void addFacilityMenuItem(Menu& menu, const std::string& title, bool isChecked, bool isRed);

    const Outlets& outlets;
    Settings::Backend& backend;
};

} // namespace Kest::App
