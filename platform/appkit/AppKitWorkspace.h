// The desktop services on macOS and GNUstep.
#pragma once

#include "app/FrontEnd.h"

namespace Kest::AppKit {

/// Main thread only. See `App::Workspace`.
class AppKitWorkspace final : public App::Workspace {
public:
    bool run(const std::string& program, const std::vector<std::string>& arguments) override;
    bool launchApplication(const std::string& path) override;
    void selectFile(const std::string& folder) override;
    /// Shows the about panel and activates the application, so that the panel is in front of all windows.
    void showAboutPanel(const App::About& about) override;
    /// Writes to the system's log with NSLog.
    void log(const std::string& line) override;
};

} // namespace Kest::AppKit
