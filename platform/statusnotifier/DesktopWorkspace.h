// The desktop services on Linux, through the session bus.
#pragma once

#include "platform/posix/PosixWorkspace.h"
#include "platform/statusnotifier/Bus.h"

namespace Kest::StatusNotifier {

/// Main thread only. The bus must outlive this object.
class DesktopWorkspace final : public Posix::PosixWorkspace {
public:
    explicit DesktopWorkspace(sd_bus* sessionBus) : bus(sessionBus) {}

    /// Shows the folder in the desktop's file manager, without waiting. If the call of the file manager fails
    /// or is not answered within 2 s, starts xdg-open with the folder. Logs one line if xdg-open cannot be
    /// started. A new call of this function cancels the wait for the previous reply.
    void selectFile(const std::string& folder) override;
    bool hasAboutPanel() const override { return false; } // the menu shows the text
    void showAboutPanel(const App::About&) override {}

    // Called when the file manager has replied or the wait has ended; `shown` is false after an error.
    void fileManagerAnswered(bool shown);

private:
    int callFileManager(const std::string& uri);

    sd_bus* bus;
    SlotPtr pendingCall;
    std::string pendingFolder;
};

} // namespace Kest::StatusNotifier
