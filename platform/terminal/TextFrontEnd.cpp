#include "platform/terminal/TextFrontEnd.h"

#include "app/ItemPath.h"
#include "app/KestSettingsAppDelegate.h"
#include "log/Output.h"
#include "platform/terminal/TextMenu.h"

#include <cerrno>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace Kest::Terminal {
namespace {

constexpr char kHelp[] = "choose ITEM      chooses the item, e.g. choose Speaker Configuration > Stereo\n"
                         "open SUBMENU     prints its items, e.g. open Monitoring Facility\n"
                         "menu             prints the whole menu\n"
                         "quit             ends the agent";

std::string quoted(const App::ItemSnapshot& item) { return "\"" + itemName(*item.properties) + "\""; }

std::string_view trimmed(std::string_view text)
{
    const auto first = text.find_first_not_of(" \t\r");
    return first == std::string_view::npos ? std::string_view()
                                           : text.substr(first, text.find_last_not_of(" \t\r") - first + 1);
}

} // namespace

bool TextFrontEnd::mayHaveScript()
{
    struct stat status {};
    return fstat(STDIN_FILENO, &status) == 0 && !S_ISCHR(status.st_mode);
}

bool TextFrontEnd::run(App::KestSettingsAppDelegate& application)
{
    delegate = &application;
    post([this] { // after the jobs of the start-up, so that the menu is complete
        printMenu();
        printsChanges = true;
    });
    loop.watchInput(STDIN_FILENO, [this] { readInput(); });
    const bool succeeded = loop.run();
    delegate = nullptr;
    return succeeded && !(commandFailed && mayHaveScript());
}

void TextFrontEnd::menuChanged(const App::MenuChanges& changes)
{
    if (printsChanges)
        for (const auto& line : changeLines(changes, delegate->menu()))
            Lct::print("%s\n", line.c_str());
}

void TextFrontEnd::readInput()
{
    char bytes[4096];
    const auto count = read(STDIN_FILENO, bytes, sizeof bytes);
    if (count < 0 && (errno == EINTR || errno == EAGAIN))
        return;
    if (count <= 0)
        return inputEnded();
    takeInput({bytes, static_cast<std::size_t>(count)});
}

void TextFrontEnd::takeInput(std::string_view bytes)
{
    lines.feed(
        bytes, [this](std::string_view line) { execute(trimmed(line)); },
        [this](std::string_view) {
            reject("line too long: maximum " + std::to_string(Text::LineSplitter::kMaxLineBytes) + " bytes");
        });
}

// A service, whose input has no commands, keeps running.
void TextFrontEnd::inputEnded()
{
    loop.unwatch(STDIN_FILENO);
    takeInput("\n");
    if (hasHadCommand || isatty(STDIN_FILENO) != 0)
        loop.quit();
}

void TextFrontEnd::execute(std::string_view line)
{
    if (loop.isQuitting())
        return;
    hasHadCommand |= !line.empty();
    const auto command = line.substr(0, line.find(' '));
    const auto argument = trimmed(line.substr(command.size()));
    if (command == "choose")
        choose(argument);
    else if (command == "open")
        open(argument);
    else if (line == "menu")
        printMenu();
    else if (line == "quit")
        loop.quit();
    else if (line == "help")
        Lct::print("%s\n", kHelp);
    else if (!line.empty())
        reject("unknown command \"" + std::string(line) + "\"; \"help\" lists the commands");
}

void TextFrontEnd::choose(std::string_view path)
{
    const auto menu = takeSnapshot(delegate->menu());
    const auto found = findByPath(menu, path);
    const auto* item = found.item;
    if (item == nullptr)
        reject(found.error);
    else if (item->hasSubmenu)
        reject(quoted(*item) + " is a submenu: open it, or choose one of its items");
    else if (!delegate->choose(item->id))
        reject(quoted(*item) + " is greyed");
}

void TextFrontEnd::open(std::string_view path)
{
    const auto menu = takeSnapshot(delegate->menu());
    const auto found = findByPath(menu, path);
    const auto* item = found.item;
    if (item == nullptr)
        return reject(found.error);
    if (!item->hasSubmenu)
        return reject(quoted(*item) + " is not a submenu");
    announceOpening(*item);
    printLinesOf(*takeSnapshot(delegate->menu(), item->id, -1));
}

void TextFrontEnd::reject(const std::string& error)
{
    commandFailed = true;
    Lct::printError("%s\n", printable(error).c_str());
}

void TextFrontEnd::printMenu()
{
    announceOpening(takeSnapshot(delegate->menu()));
    printLinesOf(takeSnapshot(delegate->menu()));
}

void TextFrontEnd::printLinesOf(const App::ItemSnapshot& menu) const
{
    const bool isWholeMenu = menu.id == App::kStatusMenuId;
    Lct::print("%s\n", isWholeMenu ? "Kest Settings" : printable(itemName(*menu.properties)).c_str());
    for (const auto& line : menuLines(menu))
        Lct::print("%s\n", line.c_str());
}

// Fills submenus that are filled on opening. Prints no changes meanwhile: the printed menu contains them.
void TextFrontEnd::announceOpening(const App::ItemSnapshot& menu)
{
    const bool before = std::exchange(printsChanges, false);
    delegate->menuWillOpen(menu.id);
    for (const auto id : submenuIdsBelow(menu))
        delegate->menuWillOpen(id);
    printsChanges = before;
}

} // namespace Kest::Terminal
