// The front end that shows the menu on the full screen of a terminal.
#pragma once

#include "app/FrontEnd.h"
#include "platform/posix/MainLoop.h"
#include "platform/terminal/MenuScreen.h"
#include "platform/terminal/Screen.h"

#include <functional>
#include <string>

namespace Kest::App {
class KestSettingsAppDelegate;
}

namespace Kest::Terminal {

/// While this object exists, it gets the output of the process through `Lct::redirectOutput` and shows the
/// last line of the output on one line of the screen. Main thread only, except `post`.
class FullScreenFrontEnd final : public App::FrontEnd {
public:
    /// The screen must outlive this object.
    explicit FullScreenFrontEnd(Screen& terminalScreen);
    ~FullScreenFrontEnd() override;
    FullScreenFrontEnd(const FullScreenFrontEnd&) = delete;
    FullScreenFrontEnd& operator=(const FullScreenFrontEnd&) = delete;

    /// Shows the menu and handles keys until `quit` is called or the terminal hangs up, then returns true.
    /// Returns false if waiting for events failed.
    bool run(App::KestSettingsAppDelegate& application);

    void showStatusItem(const std::string&) override {} // no effect: the screen shows the menu
    void post(std::function<void()> job) override { loop.post(std::move(job)); }
    void menuChanged(const App::MenuChanges& changes) override;
    void hostChanged() override { scheduleDrawing(); }
    void quit() override { loop.quit(); }

private:
    void watchSignals();
    void readKeys();
    void execute(const Command& command);
    void refreshMenu();
    void scheduleDrawing();
    void draw();

    Screen& screen;
    Posix::MainLoop loop;
    MenuScreen menu;
    App::KestSettingsAppDelegate* delegate = nullptr; // null except during `run`
    bool isMenuStale = true;
    bool isDrawingScheduled = false;
};

} // namespace Kest::Terminal
