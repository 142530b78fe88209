// The menu of the audio buses in the host's session. The user chooses one of them as the default bus.
#pragma once

#include "app/InterfaceDescription.h"
#include "app/Sender.h"

#include <string>
#include <vector>

namespace Kest::Settings {
class Backend;
}

namespace Kest::App {

/// Main thread only. Both references must outlive this object.
class DefaultBusMenu {
public:
    DefaultBusMenu(const Outlets& menuOutlets, Settings::Backend& settingsBackend)
        : outlets(menuOutlets), backend(settingsBackend)
    {}

    /// Gets the bus names from the Backend and rebuilds the menu. Also prints each name to standard output as
    /// a line "bus INDEX : NAME", with indices from 0, and then an empty line. Call this when the buses have
    /// changed.
    void printAndRefreshBuses();
    /// Gets the bus names and rebuilds the menu, but prints nothing.
    void refreshQuietly();

    /// Rebuilds the menu from the bus names that `printAndRefreshBuses` or `refreshQuietly` got last. If the
    /// default bus is not among these names, makes the bus "Main Bus" the default, in the menu and in the
    /// Backend.
    void updateKestBusMenu();

    /// Makes the bus whose index is `sender.tag()` the default, in the menu and in the Backend, and rebuilds
    /// the menu. If no bus has this index, the default does not change. If the bus's name has fewer than two
    /// characters, the default changes in the menu only.
    void setDefaultKestBus(Sender sender);

private:
    std::vector<std::string> fetchBusList();
    void setBackendBus(const std::string& name);

    const Outlets& outlets;
    Settings::Backend& backend;
    std::vector<std::string> kestBusNamesList; // UTF-8; an item's tag is an index of this list
    std::string currentDefaultKestBus;         // UTF-8; the item of this bus is checked
};

} // namespace Kest::App
