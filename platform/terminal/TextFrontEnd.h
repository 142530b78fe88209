// The menu as lines on standard output, with choices as lines on standard input.
#pragma once

#include "app/FrontEnd.h"
#include "app/MenuSnapshot.h"
#include "platform/posix/MainLoop.h"
#include "text/LineSplitter.h"

#include <string>
#include <string_view>

namespace Kest::App {
class KestSettingsAppDelegate;
}

namespace Kest::Terminal {

/// Main thread only, but for `post`.
class TextFrontEnd final : public App::FrontEnd {
public:
    /// Whether commands can come from a script: standard input is a file, a pipe or a socket.
    static bool hasScript();

    /// Prints the menu, then takes commands and prints changes until it is asked to quit, or standard input
    /// ends behind a command. False when a command of a script failed, or the loop; one line is printed for
    /// each.
    bool run(App::KestSettingsAppDelegate& application);

    void showStatusItem(const std::string&) override {} // the lines are the handle
    void post(std::function<void()> job) override { loop.post(std::move(job)); }
    void menuChanged(const App::MenuChanges& changes) override;
    void quit() override { loop.quit(); }

private:
    void readInput();
    void takeInput(std::string_view bytes);
    void inputEnded();
    void obey(std::string_view line);
    void choose(std::string_view path);
    void open(std::string_view path);
    void reject(const std::string& error);
    void printMenu();
    void printLinesOf(const App::ItemSnapshot& menu) const;
    void announceOpening(const App::ItemSnapshot& menu);

    Posix::MainLoop loop;
    App::KestSettingsAppDelegate* delegate = nullptr; // set while running
    bool printsChanges = false;
    bool hasHadCommand = false;
    bool hasFailed = false; // a command has
    Text::LineSplitter lines;
};

} // namespace Kest::Terminal
