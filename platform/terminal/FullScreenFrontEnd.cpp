#include "platform/terminal/FullScreenFrontEnd.h"

#include "app/KestSettingsAppDelegate.h"
#include "log/Output.h"

#include <csignal>
#include <ctime>
#include <unistd.h>

namespace Kest::Terminal {

FullScreenFrontEnd::FullScreenFrontEnd(Screen& terminalScreen)
    : screen(terminalScreen), menu(terminalScreen.glyphs())
{
    Lct::redirectOutput([this](std::string_view text) {
        post([this, printed = std::string(text)] {
            menu.addPrintedText(printed);
            scheduleDrawing();
        });
    });
}

FullScreenFrontEnd::~FullScreenFrontEnd() { Lct::redirectOutput({}); }

bool FullScreenFrontEnd::run(App::KestSettingsAppDelegate& application)
{
    delegate = &application;
    watchSignals();
    scheduleDrawing(); // after the jobs of the start-up, so that the menu is complete
    loop.watchInput(STDIN_FILENO, [this] { readKeys(); });
    const bool succeeded = loop.run();
    delegate = nullptr;
    return succeeded;
}

void FullScreenFrontEnd::menuChanged(const App::MenuChanges&)
{
    isMenuStale = true;
    scheduleDrawing();
}

void FullScreenFrontEnd::watchSignals()
{
    Posix::JobQueue::setEmergencyCleanup(TerminalGuard::restore);
    loop.watchSignal(SIGWINCH, [this] {
        screen.resize();
        scheduleDrawing();
    });
    loop.watchSignal(SIGTSTP, [this] { screen.suspend(); });
    loop.watchSignal(SIGCONT, [this] {
        if (!screen.isInForeground()) {
            kill(0, SIGTTOU); // stops the process group, as the terminal does in the background
            return;
        }
        screen.resume();
        scheduleDrawing();
    });
}

void FullScreenFrontEnd::readKeys()
{
    if (Screen::hasHungUp())
        return loop.quit();
    while (const auto input = screen.nextInput()) {
        if (input->key == Key::suspend)
            return screen.suspend(); // the shell reads what was typed after it
        refreshMenu();
        execute(menu.press(*input));
        if (loop.isQuitting())
            return;
    }
    scheduleDrawing();
}

void FullScreenFrontEnd::execute(const Command& command)
{
    if (command.quit)
        return loop.quit();
    if (command.chosen != App::kStatusMenuId)
        delegate->choose(command.chosen);
    for (const auto submenu : command.opened)
        delegate->menuWillOpen(submenu);
}

void FullScreenFrontEnd::refreshMenu()
{
    if (std::exchange(isMenuStale, false))
        menu.show(takeSnapshot(delegate->menu()), std::time(nullptr));
}

// Several calls cause one drawing.
void FullScreenFrontEnd::scheduleDrawing()
{
    if (!std::exchange(isDrawingScheduled, true))
        loop.post([this] { draw(); });
}

void FullScreenFrontEnd::draw()
{
    if (!screen.canDraw()) {
        loop.watchOutput(screen.descriptor(), [this] {
            loop.unwatch(screen.descriptor());
            draw();
        });
        return;
    }
    isDrawingScheduled = false;
    refreshMenu();
    menu.showHost(delegate->hostState().presence);
    screen.draw(menu.lines(screen.size()));
}

} // namespace Kest::Terminal
