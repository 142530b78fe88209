// The full-screen menu without a terminal: handles keys and returns the lines to draw.
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
    character, // `text` contains it
    click,     // at `line`
    wheelUp,
    wheelDown,
    suspend, // ignored by the menu
    other,
};

struct Input {
    Key key = Key::other;
    std::string text{}; // in the locale's encoding
    int line = 0;       // of the screen, counted from 0
};

/// What the front end does after an input: chooses an item, then reports the opened submenus; or quits.
struct Command {
    App::ItemId chosen = App::kStatusMenuId;
    std::vector<App::ItemId> opened; // submenus that are now displayed or part of a search
    bool quit = false;
};

struct Size {
    int lines = 0;
    int columns = 0;
    bool operator==(const Size&) const = default;
};
constexpr Size kMinSize{8, 40};

enum class Style : std::uint8_t { plain, title, greyed, red, status };

struct ScreenLine {
    std::string text; // drawable, as wide as the screen
    Style style = Style::plain;
    bool selected = false;
};

/// Returns an item as one row of `width` cells: a pointer if it is selected, mark and title, and an arrow if
/// it has a submenu. The row of an encoding has a progress bar after the name.
std::string rowText(const App::ItemSnapshot& item, bool isSelected, int width, Glyphs glyphs);

/// Displays a title, the rows of the open menu, the last printed line, and the state of the host and its
/// buses.
class MenuScreen {
public:
    explicit MenuScreen(Glyphs ofScreen) : glyphs(ofScreen) {}

    /// Replaces the menu; `now` is in seconds since 1970.
    void show(App::ItemSnapshot statusMenu, std::time_t now);
    /// Takes printed text, in pieces of any size. Its last line that is not blank is shown; a log line is
    /// shown without date and level.
    void addPrintedText(const std::string& printed);
    void showHost(Settings::HostPresence presence) { host = presence; }
    Command press(const Input& input);

    /// Returns all lines of the screen from the top; scrolls to the selected row.
    std::vector<ScreenLine> lines(Size size);

private:
    enum class Mode : std::uint8_t { menu, search, help };

    void recordBuses(const App::ItemSnapshot& statusMenu, std::time_t now);
    Command pressInMenu(const Input& input);
    Command pressInSearch(const Input& input);
    Command pressCharacter(char letter);
    Command activate(App::ItemId id);
    Command open(App::ItemId submenu);
    Command click(int line);
    Command goToMatch();
    void edit(const Input& input);
    void updateMatches();

    std::string titleText() const;
    std::string messageText() const;
    std::string statusText() const;
    std::string busText() const;
    std::vector<ScreenLine> menuLines(int height, int width);
    std::vector<ScreenLine> matchLines(int height, int width);

    const Glyphs glyphs;
    Navigator navigator;
    std::vector<std::string> buses;
    std::time_t busesChanged = 0; // 0: never since the first list
    Settings::HostPresence host = Settings::HostPresence::absent;
    std::string lastPrintedLine;
    std::string unfinishedLine;
    Mode mode = Mode::menu;
    std::string searchText;
    std::vector<SearchMatch> matches;
    int match = 0; // index of the selected match
    // Of the last drawing, for clicks and page keys.
    int drawnTop = 0;
    int drawnHeight = 1;
};

} // namespace Kest::Terminal
