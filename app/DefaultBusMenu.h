// The menu of the session's buses, one of which is the default bus.
#pragma once

#include "app/InterfaceDescription.h"
#include "app/Sender.h"

#include <string>
#include <vector>

namespace Kest::Settings {
class Backend;
}

namespace Kest::App {

/// Main thread only; both references outlive it.
class DefaultBusMenu {
public:
    DefaultBusMenu(const Outlets& menuOutlets, Settings::Backend& settingsBackend)
        : outlets(menuOutlets), backend(settingsBackend)
    {}

    /// Handles message 3: reads the names that the Backend has now, prints them to standard output in
    /// printable form and rebuilds the menu.
    void refreshBusList();
    /// Does the same at launch, without printing: only message 3 prints the names.
    void fillAtLaunch();

    /// Rebuilds the menu from the names read last. If the current bus is not among them, selects the main
    /// bus.
    void updateKestBusMenu();

    /// Makes the sender's bus the default; a tag outside the list changes nothing.
    void setDefaultKestBus(Sender sender);

private:
    std::vector<std::string> fetchBusList();
    void setBackendBus(const std::string& name);

    const Outlets& outlets;
    Settings::Backend& backend;
    std::vector<std::string> kestBusNamesList; // UTF-8; the index is the tag of the bus
    std::string currentDefaultKestBus;         // the title that is checked
};

} // namespace Kest::App
