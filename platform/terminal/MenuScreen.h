// The full-screen menu, independent of a terminal. Handles keys and returns the lines to draw.
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
    character, // `Input::text` contains it
    click,     // at `Input::line`
    wheelUp,
    wheelDown,
    suspend, // the suspend key of the terminal; handled by the front end
    other,
};

/// A key or a mouse event.
struct Input {
    Key key = Key::other;
    std::string text{}; // for `Key::character`: one character in the locale's encoding
    int line = 0;       // for `Key::click`: the line of the screen, counted from 0
};

/// What the front end must do after an input. If `quit` is true, the front end only quits. Otherwise it first
/// chooses the item `chosen`, and then calls the application's `menuWillOpen` for each menu in `opened`.
struct Command {
    App::ItemId chosen = App::kStatusMenuId; // `kStatusMenuId` means none
    std::vector<App::ItemId> opened;         // menus that are now shown, or needed for a search
    bool quit = false;
};

/// The size of a screen, in character cells.
struct Size {
    int lines = 0;
    int columns = 0;
    bool operator==(const Size&) const = default;
};
/// If the screen has fewer lines or fewer columns, only a message is drawn.
constexpr Size kMinSize{8, 40};

enum class Style : std::uint8_t { plain, title, greyed, red, status };

struct ScreenLine {
    std::string text; // exactly as wide as the screen, without control characters
    Style style = Style::plain;
    bool selected = false;
};

/// Returns an item as one row of `width` cells: "> " if the item is selected, the mark, the name, and an
/// arrow if the item has a submenu. If the item is an encoding with a percentage, a progress bar follows the
/// name. A separator is returned as a horizontal line.
std::string rowText(const App::ItemSnapshot& item, bool isSelected, int width, Glyphs glyphs);

/// Displays a title, rows, a message such as the last printed line, and the state of K3DHost and its buses.
/// The rows are those of the innermost open menu, of a search or of the help. Main thread only.
class MenuScreen {
public:
    explicit MenuScreen(Glyphs ofScreen) : glyphs(ofScreen) {}

    /// Replaces the menu. `now` is the time in seconds since 1970. If the previous menu contained buses and
    /// the new buses differ from them, `now` is displayed as the time of their last change.
    void show(App::ItemSnapshot statusMenu, std::time_t now);
    /// Adds text that was printed. A call may pass several lines or only a part of a line. The last line that
    /// is not blank is displayed. If this line is an error or a warning of the log, it is displayed without
    /// its date and level.
    void addPrintedText(const std::string& printed);
    void showHost(Settings::HostPresence presence) { host = presence; }
    /// Handles one key or mouse event, and returns what the front end must do.
    Command press(const Input& input);

    /// Returns all lines of the screen from top to bottom. Scrolls the rows so that the selected row is
    /// visible.
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
    std::time_t busesChanged = 0; // seconds since 1970; 0: no change since the first list
    Settings::HostPresence host = Settings::HostPresence::absent;
    std::string lastPrintedLine;
    std::string unfinishedLine; // printed text after the last line feed
    Mode mode = Mode::menu;
    std::string searchText;
    std::vector<SearchMatch> matches;
    int match = 0; // index of the selected match
    // In the last drawing: the index of the first row, and the number of lines for rows. Used by clicks and
    // page keys.
    int drawnTop = 0;
    int drawnHeight = 1;
};

} // namespace Kest::Terminal
