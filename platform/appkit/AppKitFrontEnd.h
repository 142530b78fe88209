// The front end of AppKit: the menu in the menu bar.
#pragma once

#include "app/FrontEnd.h"
#import "platform/appkit/MenuBridge.h"
#import "platform/appkit/MenuMirror.h"

#include <memory>

namespace Kest::App {
class KestSettingsAppDelegate;
}

namespace Kest::AppKit {

/// Main thread only, but for `post`. The application object is there before it.
class AppKitFrontEnd : public App::FrontEnd, private MenuListener {
public:
    AppKitFrontEnd();
    ~AppKitFrontEnd() override;
    AppKitFrontEnd(const AppKitFrontEnd&) = delete;
    AppKitFrontEnd& operator=(const AppKitFrontEnd&) = delete;

    /// Whose menu it shows and who hears of choices; it outlives the front end's last job. Null for nobody.
    void setApplication(App::KestSettingsAppDelegate* application) { delegate = application; }
    NSMenu* statusMenu() const { return mirror.statusMenu(); }

    void showStatusItem(const std::string& imageName) override;
    void post(std::function<void()> job) override;
    void menuChanged(const App::MenuChanges& changes) override;
    /// The application terminates when the work at hand is done.
    void quit() override;

private:
    void itemChosen(App::ItemId id) override;
    void menuNeedsUpdate(App::ItemId id) override;
    void menuWillOpen(App::ItemId id) override { mirror.menuOpened(id); }
    void menuDidClose(App::ItemId id) override;

    App::KestSettingsAppDelegate* delegate = nullptr;
    KestMenuBridge* const bridge;
    MenuMirror mirror;
    id statusItem = nil;
    const std::shared_ptr<bool> ended; // outlives it in jobs that are still posted; main thread only
};

} // namespace Kest::AppKit
