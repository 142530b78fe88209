// The default bus: which of the session's buses it is.
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

    /// Handles message 3: takes the names that the Backend has now, prints them to standard output in
    /// printable form and rebuilds the menu.
    void refreshBusList();
    /// Does the same at launch, without printing: standard output belongs to messages.
    void fillFirst();

    /// Rebuilds the menu from the names taken last. A current bus that is none of them gives way to the
    /// main bus.
    void updateKestBusMenu();

    /// Makes the sender's bus the default one; a tag outside the list changes nothing.
    void setDefaultKestBus(Sender sender);

private:
    std::vector<std::string> takeBusList();
    void tellBackend(const std::string& name);

    const Outlets& outlets;
    Settings::Backend& backend;
    std::vector<std::string> kestBusNamesList; // UTF-8; the index is the tag of the bus
    std::string currentDefaultKestBus;         // the title that is checked
};

} // namespace Kest::App
