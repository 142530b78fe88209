// The services of a Linux desktop, which are called on the session bus.
#pragma once

#include "platform/posix/PosixWorkspace.h"
#include "platform/statusnotifier/Bus.h"

namespace Kest::StatusNotifier {

/// Main thread only. The bus must outlive this object.
class DesktopWorkspace final : public Posix::PosixWorkspace {
public:
    explicit DesktopWorkspace(sd_bus* sessionBus) : bus(sessionBus) {}

    /// Shows the folder in the desktop's file manager. If the bus has no file manager, or none replies within
    /// 2 s, opens the folder with the default program instead. Logs one line if that fails too. A new call
    /// cancels the wait for the previous reply.
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
