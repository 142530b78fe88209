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
    /// Returns whether standard input may contain the commands of a script: false if it is closed or a
    /// character device, such as a terminal or /dev/null.
    static bool mayHaveScript();

    /// Prints the menu, then executes the commands from standard input and prints changes. Returns when
    /// `quit` is called. Also returns when standard input ends, if it is a terminal or contained a command.
    /// Prints one line for each failure. Returns false if waiting for events failed. Also returns false if a
    /// command failed and `mayHaveScript()` is true. Otherwise returns true.
    bool run(App::KestSettingsAppDelegate& application);

    void showStatusItem(const std::string&) override {} // no effect: the printed lines show the menu
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
    App::KestSettingsAppDelegate* delegate = nullptr; // null except during `run`
    bool printsChanges = false;
    bool hasHadCommand = false;
    bool commandFailed = false;
    Text::LineSplitter lines;
};

} // namespace Kest::Terminal
