// The front end that prints the menu as lines and reads commands from standard input.
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

/// Main thread only, except `post`.
class TextFrontEnd final : public App::FrontEnd {
public:
    /// Returns whether commands can come from a script: standard input is a file, a pipe or a socket.
    static bool hasScript();

    /// Prints the menu, then executes commands and prints changes until `quit` is called or standard input
    /// ends; without any command, only the end of a terminal counts. Returns false if a command of a script
    /// or the loop failed; each failure prints one line.
    bool run(App::KestSettingsAppDelegate& application);

    void showStatusItem(const std::string&) override {} // the lines show the menu
    void post(std::function<void()> job) override { loop.post(std::move(job)); }
    void menuChanged(const App::MenuChanges& changes) override;
    void quit() override { loop.quit(); }

private:
    void readInput();
    void takeInput(std::string_view bytes);
    void inputEnded();
    void execute(std::string_view line);
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
    bool commandFailed = false; // a command failed
    Text::LineSplitter lines;
};

} // namespace Kest::Terminal
