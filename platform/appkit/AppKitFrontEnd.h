// The front end that shows the menu in the menu bar with AppKit.
#pragma once

#include "app/FrontEnd.h"
#import "platform/appkit/InputWatch.h"
#import "platform/appkit/MenuBridge.h"
#import "platform/appkit/MenuMirror.h"
#include "platform/posix/JobQueue.h"

#include <optional>

namespace Kest::App {
class KestSettingsAppDelegate;
}

namespace Kest::AppKit {

/// `NSApp` must exist before the construction. Main thread only, except `post`.
class AppKitFrontEnd : public App::FrontEnd, private MenuListener {
public:
    AppKitFrontEnd();
    ~AppKitFrontEnd() override;
    AppKitFrontEnd(const AppKitFrontEnd&) = delete;
    AppKitFrontEnd& operator=(const AppKitFrontEnd&) = delete;

    /// Sets the agent whose menu is shown and whose `choose` gets the user's choices. Call it once, before
    /// all other functions except `post`. `application` must exist while the main loop runs.
    void setApplication(App::KestSettingsAppDelegate& application);
    NSMenu* statusMenu() const { return mirror->statusMenu(); }

    void showStatusItem(const std::string& imageName) override;
    void post(std::function<void()> job) override;
    void menuChanged(const App::MenuChanges& changes) override { mirror->show(changes); }
    /// Returns at once. After the current event, `NSApp` terminates, and so the process ends.
    void quit() override;

private:
    void itemChosen(App::ItemId id) override;
    void menuNeedsUpdate(App::ItemId id) override;
    void menuWillOpen(App::ItemId id) override { mirror->menuOpened(id); }
    void menuDidClose(App::ItemId id) override;

    App::KestSettingsAppDelegate* delegate = nullptr;
    KestMenuBridge* const bridge;
    std::optional<MenuMirror> mirror; // set by `setApplication`
    id statusItem = nil;
    Posix::JobQueue jobs;
    const InputWatch wakeUps;
};

} // namespace Kest::AppKit
