// The services of a Linux desktop, called on the session bus.
#pragma once

#include "platform/posix/PosixWorkspace.h"
#include "platform/statusnotifier/Bus.h"

namespace Kest::StatusNotifier {

/// Main thread only. The bus outlives it.
class DesktopWorkspace final : public Posix::PosixWorkspace {
public:
    explicit DesktopWorkspace(sd_bus* sessionBus) : bus(sessionBus) {}

    /// Shows the folder in the desktop's file manager; with the default program for folders if there is none
    /// on the bus or it does not reply within 2 s.
    void selectFile(const std::string& folder) override;
    bool hasAboutPanel() const override { return false; } // the agent shows no dialogs
    void showAboutPanel(const App::About&) override {}

    // Called by sd-bus.
    void fileManagerAnswered(bool shown);

private:
    int callFileManager(const std::string& uri);

    sd_bus* bus;
    SlotPtr pendingCall;
    std::string pendingFolder;
};

} // namespace Kest::StatusNotifier
