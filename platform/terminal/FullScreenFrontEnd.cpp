#include "platform/terminal/FullScreenFrontEnd.h"

#include "app/KestSettingsAppDelegate.h"
#include "log/Output.h"

#include <csignal>
#include <ctime>
#include <unistd.h>

namespace Kest::Terminal {

FullScreenFrontEnd::FullScreenFrontEnd(Screen& onScreen) : screen(onScreen), menu(onScreen.glyphs())
{
    Lct::redirectOutput([this](std::string_view text) {
        post([this, printed = std::string(text)] {
            menu.note(printed);
            drawLater();
        });
    });
}

FullScreenFrontEnd::~FullScreenFrontEnd() { Lct::redirectOutput({}); }

bool FullScreenFrontEnd::run(App::KestSettingsAppDelegate& application)
{
    delegate = &application;
    watchSignals();
    drawLater(); // after the jobs of the start-up, so that the menu is complete
    loop.watchInput(STDIN_FILENO, [this] { readKeys(); });
    const bool succeeded = loop.run();
    delegate = nullptr;
    return succeeded;
}

void FullScreenFrontEnd::menuChanged(const App::MenuChanges&)
{
    isMenuStale = true;
    drawLater();
}

void FullScreenFrontEnd::watchSignals()
{
    Posix::JobQueue::setEmergencyCleanup(TerminalGuard::restore);
    loop.watchSignal(SIGWINCH, [this] {
        screen.resize();
        drawLater();
    });
    loop.watchSignal(SIGTSTP, [this] { screen.suspend(); });
    loop.watchSignal(SIGCONT, [this] {
        if (!screen.isInForeground()) {
            kill(0, SIGTTOU); // stops the process group, as the terminal does in the background
            return;
        }
        screen.resume();
        drawLater();
    });
}

void FullScreenFrontEnd::readKeys()
{
    if (Screen::hasHungUp())
        return loop.quit();
    while (const auto input = screen.nextInput()) {
        if (input->key == Key::suspend)
            return screen.suspend(); // the shell reads what was typed after it
        takeMenu();
        obey(menu.press(*input));
        if (loop.isQuitting())
            return;
    }
    drawLater();
}

void FullScreenFrontEnd::obey(const Request& request)
{
    if (request.quit)
        return loop.quit();
    if (request.chosen != App::kStatusMenuId)
        delegate->choose(request.chosen);
    for (const auto submenu : request.opened)
        delegate->menuWillOpen(submenu);
}

void FullScreenFrontEnd::takeMenu()
{
    if (std::exchange(isMenuStale, false))
        menu.show(takeSnapshot(delegate->menu()), std::time(nullptr));
}

// Several calls cause one drawing.
void FullScreenFrontEnd::drawLater()
{
    if (!std::exchange(isDrawingDue, true))
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
    isDrawingDue = false;
    takeMenu();
    menu.showHost(delegate->hostState().presence);
    screen.draw(menu.lines(screen.size()));
}

} // namespace Kest::Terminal
