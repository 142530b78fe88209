// The menu of the session's buses. The user chooses one of these buses as the default bus.
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

    /// Gets the bus names from the Backend and rebuilds the menu. Also prints the names to standard output in
    /// printable form, one per line, and then an empty line. Call this when the buses have changed.
    void printAndRefreshBuses();
    /// Gets the bus names and rebuilds the menu, but prints nothing.
    void refreshQuietly();

    /// Rebuilds the menu from the bus names that `printAndRefreshBuses` or `refreshQuietly` got last. If the
    /// current default bus is not among these names, makes the main bus the default, also in the Backend.
    void updateKestBusMenu();

    /// Makes the sender's bus the default and rebuilds the menu. If the sender's tag is not the index of a
    /// bus, the default does not change. A bus whose name has fewer than two characters becomes the default
    /// in the menu, but not in the Backend.
    void setDefaultKestBus(Sender sender);

private:
    std::vector<std::string> fetchBusList();
    void setBackendBus(const std::string& name);

    const Outlets& outlets;
    Settings::Backend& backend;
    std::vector<std::string> kestBusNamesList; // UTF-8; an item's tag is the index of its bus
    std::string currentDefaultKestBus;         // UTF-8; its item is checked
};

} // namespace Kest::App
