// The full-screen menu without a terminal: what keys do to it and what it looks like.
#pragma once

#include "app/MenuSnapshot.h"
#include "backend/Backend.h"
#include "platform/terminal/Cells.h"
#include "platform/terminal/ItemSearch.h"
#include "platform/terminal/Navigator.h"

#include <cstdint>
#include <ctime>
#include <string>
#include <vector>

namespace Kest::Terminal {

enum class Key : std::uint8_t {
    up,
    down,
    left,
    right,
    pageUp,
    pageDown,
    home,
    end,
    enter,
    escape,
    backspace,
    character, // with its text
    click,     // with its line
    wheelUp,
    wheelDown,
    suspend, // nothing for the menu
    other,
};

struct Input {
    Key key = Key::other;
    std::string text{}; // UTF-8
    int line = 0;       // of the screen, from 0
};

/// What the application is to be told of an input, in this order.
struct Request {
    App::ItemId chosen = App::kStatusMenuId;
    std::vector<App::ItemId> opened; // submenus that are looked at now
    bool quit = false;
};

struct Size {
    int lines = 0;
    int columns = 0;
    bool operator==(const Size&) const = default;
};
constexpr Size kSmallest{8, 40};

enum class Look : std::uint8_t { plain, title, greyed, red, status };

struct ScreenLine {
    std::string text; // drawable, as wide as the screen
    Look look = Look::plain;
    bool selected = false;
};

/// An item as one row of `width` cells: a pointer when it is the selected one, mark and title, an arrow when
/// there is something below it. An encoding has its progress as a bar behind its name.
std::string rowText(const App::ItemSnapshot& item, bool isSelected, int width, Glyphs glyphs);

/// A title, the rows of the open menu, what was printed last, and what is known of the host and its buses.
class MenuScreen {
public:
    explicit MenuScreen(Glyphs ofScreen) : glyphs(ofScreen) {}

    /// The menu is this since `now`, in seconds since 1970.
    void show(App::ItemSnapshot statusMenu, std::time_t now);
    /// Text that was printed, whole lines or parts of one. Its last line that is not blank is shown, of a log
    /// line without the date and the level.
    void note(const std::string& printed);
    void showHost(Settings::HostPresence presence) { host = presence; }
    Request press(const Input& input);

    /// The screen from the top, as many lines as it has; scrolls to what is selected.
    std::vector<ScreenLine> lines(Size size);

private:
    enum class Mode : std::uint8_t { menu, search, help };

    void noteBuses(const App::ItemSnapshot& statusMenu, std::time_t now);
    Request pressInMenu(const Input& input);
    Request pressInSearch(const Input& input);
    Request pressCharacter(char letter);
    Request activate(App::ItemId id);
    Request open(App::ItemId submenu);
    Request click(int line);
    Request goToMatch();
    void edit(const Input& input);
    void searchAgain();

    std::string titleText() const;
    std::string messageText() const;
    std::string statusText() const;
    std::string busText() const;
    std::vector<ScreenLine> menuLines(int height, int width);
    std::vector<ScreenLine> matchLines(int height, int width);

    const Glyphs glyphs;
    Navigator navigator;
    std::vector<std::string> buses;
    std::time_t busesChanged = 0; // 0: not since the first list
    Settings::HostPresence host = Settings::HostPresence::absent;
    std::string lastNote;
    std::string unfinishedNote;
    Mode mode = Mode::menu;
    std::string searched;
    std::vector<SearchMatch> matches;
    int match = 0; // the selected one
    // As drawn last, for clicks and pages.
    int drawnTop = 0;
    int drawnHeight = 1;
};

} // namespace Kest::Terminal
