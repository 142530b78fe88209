// The desktop services on Linux, through the session bus.
#pragma once

#include "platform/posix/PosixWorkspace.h"
#include "platform/statusnotifier/Bus.h"

namespace Kest::StatusNotifier {

/// Main thread only. The bus must outlive this object.
class DesktopWorkspace final : public Posix::PosixWorkspace {
public:
    explicit DesktopWorkspace(sd_bus* sessionBus) : bus(sessionBus) {}

    /// Asks the desktop's file manager to show the folder, and returns before the reply arrives. If this
    /// fails or there is no reply within 2 s, starts xdg-open with the folder. Logs one line if xdg-open
    /// cannot be started. A new call of this function cancels the wait for the previous reply.
    void selectFile(const std::string& folder) override;
    bool hasAboutPanel() const override { return false; } // the menu shows the about text
    void showAboutPanel(const App::About&) override {}

    // Called after the file manager's reply, an error or the timeout; `shown` is true only after success.
    void fileManagerAnswered(bool shown);

private:
    int callFileManager(const std::string& uri);

    sd_bus* bus;
    SlotPtr pendingCall;
    std::string pendingFolder;
};

} // namespace Kest::StatusNotifier
