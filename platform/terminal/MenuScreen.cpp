#include "platform/terminal/MenuScreen.h"

#include "platform/terminal/TextMenu.h"
#include "text/Utf8.h"

#include <algorithm>
#include <limits>
#include <map>

namespace Kest::Terminal {
namespace {

constexpr std::size_t kMaxSearchBytes = 256; // bytes
constexpr std::size_t kMaxLineBytes = 4096;  // bytes
constexpr int kToTheEnd = std::numeric_limits<int>::max() / 2;

void collectBuses(const App::ItemSnapshot& menu, std::vector<std::string>& names)
{
    for (const auto& item : menu.items) {
        if (item.properties->action == App::Action::setDefaultKestBus)
            names.push_back(item.properties->title);
        collectBuses(item, names);
    }
}

void removeLastCharacter(std::string& text)
{
    if (!text.empty())
        text.resize(Text::wholeCharacters(text, text.size() - 1));
}

// "2026-03-01 14:05:09.004211 <ERRO> settings ..." is shown as "14:05:09 settings ...".
std::string withoutDateAndLevel(const std::string& line)
{
    constexpr std::size_t kTime = 11;
    constexpr std::size_t kTimeLength = 8;
    constexpr std::size_t kLevel = 27;
    const auto level = line.substr(std::min(kLevel, line.size()), 7);
    if (level != "<ERRO> " && level != "<WARN> ")
        return line;
    return line.substr(kTime, kTimeLength) + line.substr(kLevel + level.size() - 1);
}

} // namespace

// A line is shown as soon as it begins, because some lines are never ended.
void MenuScreen::addPrintedText(const std::string& printed)
{
    const auto text = unfinishedLine + printed;
    if (const auto last = text.find_last_not_of(" \t\r\n"); last != std::string::npos) {
        const auto begin = text.rfind('\n', last) + 1; // npos + 1 is 0
        lastPrintedLine = withoutDateAndLevel(text.substr(begin, last + 1 - begin));
    }
    unfinishedLine = text.substr(text.rfind('\n') + 1, kMaxLineBytes);
}

void MenuScreen::show(App::ItemSnapshot statusMenu, std::time_t now)
{
    recordBuses(statusMenu, now);
    navigator.show(std::move(statusMenu));
    if (mode == Mode::search)
        updateMatches();
}

void MenuScreen::recordBuses(const App::ItemSnapshot& statusMenu, std::time_t now)
{
    std::vector<std::string> names;
    collectBuses(statusMenu, names);
    if (names != buses && !buses.empty())
        busesChanged = now;
    buses = std::move(names);
}

Command MenuScreen::press(const Input& input)
{
    switch (mode) {
    case Mode::menu:
        return pressInMenu(input);
    case Mode::search:
        return pressInSearch(input);
    case Mode::help: // any known key closes it
        mode = input.key == Key::other ? Mode::help : Mode::menu;
        break;
    }
    return {};
}

Command MenuScreen::pressInMenu(const Input& input)
{
    switch (input.key) {
    case Key::up:
    case Key::wheelUp:
        return navigator.moveBy(-1), Command{};
    case Key::down:
    case Key::wheelDown:
        return navigator.moveBy(1), Command{};
    case Key::pageUp:
        return navigator.moveBy(1 - drawnHeight), Command{};
    case Key::pageDown:
        return navigator.moveBy(std::max(1, drawnHeight - 1)), Command{};
    case Key::home:
        return navigator.moveBy(-kToTheEnd), Command{};
    case Key::end:
        return navigator.moveBy(kToTheEnd), Command{};
    case Key::left:
    case Key::escape:
    case Key::backspace:
        return navigator.leave(), Command{};
    case Key::right:
        return open(navigator.selected());
    case Key::enter:
        return activate(navigator.selected());
    case Key::click:
        return click(input.line);
    case Key::character:
        return input.text.size() == 1 ? pressCharacter(input.text.front()) : Command{};
    case Key::suspend:
    case Key::other:
        break;
    }
    return {};
}

Command MenuScreen::pressCharacter(char letter)
{
    static const std::map<char, Key> kKeys = {
        {'h', Key::left}, {'j', Key::down}, {'k', Key::up}, {'l', Key::right}, {' ', Key::enter}};
    if (const auto same = kKeys.find(letter); same != kKeys.end())
        return pressInMenu({.key = same->second});
    switch (letter) {
    case 'q':
        return {.opened = {}, .quit = true};
    case '?':
        mode = Mode::help;
        return {};
    case '/':
        mode = Mode::search;
        searchText.clear();
        updateMatches();
        return {.opened = submenuIdsBelow(navigator.statusMenu())}; // fills submenus before the search
    default:
        return {};
    }
}

Command MenuScreen::activate(App::ItemId id)
{
    const auto* item = findItem(navigator.menu(), id);
    if (item == nullptr || id == App::kStatusMenuId)
        return {};
    if (item->hasSubmenu)
        return open(id);
    // A panel closes its menu after a choice; this menu stays open, so it is reported as opened again.
    return {.chosen = id, .opened = {navigator.menu().id}};
}

Command MenuScreen::open(App::ItemId submenu)
{
    const auto* before = &navigator.menu();
    navigator.enter(submenu);
    return &navigator.menu() == before ? Command{} : Command{.opened = {submenu}};
}

Command MenuScreen::click(int line)
{
    const auto rows = navigator.rows();
    const int row = drawnTop + line - 1;
    if (line < 1 || line > drawnHeight || row >= static_cast<int>(rows.size()))
        return {};
    const auto& item = *rows[static_cast<std::size_t>(row)];
    if (item.properties->separator)
        return {};
    const auto id = item.id;
    navigator.select(id);
    return activate(id);
}

Command MenuScreen::pressInSearch(const Input& input)
{
    const int last = std::max(0, static_cast<int>(matches.size()) - 1);
    switch (input.key) {
    case Key::up:
    case Key::wheelUp:
        match = std::max(0, match - 1);
        break;
    case Key::down:
    case Key::wheelDown:
        match = std::min(last, match + 1);
        break;
    case Key::escape:
        mode = Mode::menu;
        break;
    case Key::enter:
        return goToMatch();
    case Key::click:
        if (const int row = drawnTop + input.line - 1;
            input.line >= 1 && input.line <= drawnHeight && row <= last) {
            match = row;
            return goToMatch();
        }
        break;
    default:
        edit(input);
    }
    return {};
}

void MenuScreen::edit(const Input& input)
{
    if (input.key == Key::backspace && searchText.empty())
        mode = Mode::menu;
    else if (input.key == Key::backspace)
        removeLastCharacter(searchText);
    else if (input.key == Key::character && searchText.size() + input.text.size() <= kMaxSearchBytes)
        searchText += input.text;
    else
        return;
    match = 0;
    updateMatches();
}

Command MenuScreen::goToMatch()
{
    if (matches.empty())
        return {};
    mode = Mode::menu;
    navigator.goTo(matches[static_cast<std::size_t>(match)].id);
    Command command;
    for (const auto* menu : navigator.openMenus())
        if (menu->id != App::kStatusMenuId)
            command.opened.push_back(menu->id);
    return command;
}

// When the menu changes during a search, the selected match stays selected, unless it is the first one.
void MenuScreen::updateMatches()
{
    const auto before = matches.empty() ? App::kStatusMenuId : matches[static_cast<std::size_t>(match)].id;
    matches = findItems(navigator.statusMenu(), searchText);
    const auto same = std::ranges::find(matches, before, &SearchMatch::id);
    const bool keepsMatch = match != 0 && same != matches.end();
    match = keepsMatch ? static_cast<int>(same - matches.begin())
                       : std::clamp(match, 0, std::max(0, static_cast<int>(matches.size()) - 1));
}

} // namespace Kest::Terminal
