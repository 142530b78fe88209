// The lines of the full-screen menu.
#include "platform/terminal/MenuScreen.h"
#include "platform/terminal/TextMenu.h"

#include <algorithm>
#include <iterator>
#include <span>

namespace Kest::Terminal {
namespace {

constexpr int kFrameLines = 3; // title, message, status

constexpr const char* kHelp[] = {
    "  Up Down k j          move",
    "  Enter Space          choose, or open a submenu",
    "  Right l              open a submenu",
    "  Left h Esc           back to the parent menu",
    "  PgUp PgDn Home End   page, first, last",
    "  /                    find an item",
    "  Mouse                click chooses, wheel moves",
    "  Ctrl-Z               suspend",
    "  q                    quit",
};

// For windows that are too small for kHelp; it fits in the smallest window.
constexpr const char* kShortHelp[] = {
    "  Up Down k j PgUp PgDn Home End  move", "  Enter Space Right l  choose, open",
    "  Left h Esc  back     /  find an item", "  Mouse: click chooses, wheel moves",
    "  Ctrl-Z  suspend      q  quit",
};

Style styleOf(const App::ItemProperties& item)
{
    return item.red ? Style::red : item.enabled ? Style::plain : Style::greyed;
}

// Returns a line with a text at each end; the left one is cut to fit.
std::string leftAndRight(const std::string& left, const std::string& right, int width, Glyphs glyphs)
{
    return fitToWidth(left, width - cellWidth(right), glyphs) + right;
}

std::vector<ScreenLine> helpLines(int height, int width, Glyphs glyphs)
{
    const bool fits = height >= static_cast<int>(std::size(kHelp));
    const auto help = fits ? std::span<const char* const>(kHelp) : std::span<const char* const>(kShortHelp);
    std::vector<ScreenLine> drawn;
    for (const auto* line : help)
        drawn.push_back({fitToWidth(line, width, glyphs)});
    return drawn;
}

// Returns "4-20 of 40"; empty if all rows are visible.
std::string rangeText(int top, int height, int count)
{
    if (count <= height)
        return {};
    return " " + std::to_string(top + 1) + "-" + std::to_string(std::min(top + height, count)) + " of " +
           std::to_string(count);
}

constexpr int kMinBarWidth = 8;
constexpr int kMaxBarWidth = 40;

// Returns " [####......]  42%" with `width` cells in the brackets; empty without a percentage.
std::string progressBar(const std::optional<int>& percent, int width, Glyphs glyphs)
{
    if (!percent)
        return {};
    const int shown = std::clamp(*percent, 0, 100);
    const int done = shown * width / 100;
    const auto number = std::to_string(shown) + "%";
    return " [" + repeated(glyphs.done(), done) + repeated(glyphs.remaining(), width - done) + "] " +
           std::string(4 - number.size(), ' ') + number;
}

std::string labelText(const App::ItemSnapshot& item, int width, Glyphs glyphs)
{
    const auto& props = *item.properties;
    const std::string greyed = props.enabled ? "" : " (greyed)";
    if (!props.encoding)
        return fitToWidth(markText(props) + drawable(plainLabel(props), glyphs) + greyed, width, glyphs);

    auto bar =
        progressBar(props.encoding->percent, std::clamp(width / 3, kMinBarWidth, kMaxBarWidth), glyphs);
    const auto name = markText(props) + drawable(itemName(props), glyphs) + greyed;
    return fitToWidth(name, width - cellWidth(bar), glyphs) + bar;
}

} // namespace

std::string rowText(const App::ItemSnapshot& item, bool isSelected, int width, Glyphs glyphs)
{
    if (item.properties->separator)
        return "  " + repeated(glyphs.separator(), width - 4) + "  ";
    const std::string pointer = isSelected ? "> " : "  ";
    const std::string arrow = item.hasSubmenu ? std::string(" ") + glyphs.submenuArrow() : "  ";
    return pointer + labelText(item, width - 4, glyphs) + arrow;
}

std::vector<ScreenLine> MenuScreen::lines(Size size)
{
    std::vector<ScreenLine> all;
    if (size.lines < kMinSize.lines || size.columns < kMinSize.columns) {
        all.push_back({fitToWidth("Window too small: 40x8 needed", size.columns, glyphs)});
        all.resize(static_cast<std::size_t>(std::max(size.lines, 1)), {fitToWidth("", size.columns, glyphs)});
        return all;
    }

    drawnHeight = size.lines - kFrameLines;
    std::vector<ScreenLine> content;
    if (mode == Mode::help)
        content = helpLines(drawnHeight, size.columns, glyphs);
    else
        content = mode == Mode::search ? matchLines(drawnHeight, size.columns)
                                       : menuLines(drawnHeight, size.columns);
    content.resize(static_cast<std::size_t>(drawnHeight), {fitToWidth("", size.columns, glyphs)});

    const int count = static_cast<int>(mode == Mode::search ? matches.size() : navigator.rows().size());
    const auto range = mode == Mode::help ? "" : rangeText(drawnTop, drawnHeight, count);
    all.push_back({leftAndRight(titleText(), range, size.columns, glyphs), Style::title});
    std::ranges::move(content, std::back_inserter(all));
    all.push_back({fitToWidth(messageText(), size.columns, glyphs)});
    all.push_back({leftAndRight(statusText(), " ? keys  q quit", size.columns, glyphs), Style::status});
    return all;
}

std::string MenuScreen::titleText() const
{
    if (mode == Mode::help)
        return "Keys";
    if (mode == Mode::search)
        return "Find item: Enter selects, Esc cancels";
    std::string title = "Kest Settings";
    for (const auto* menu : navigator.openMenus())
        if (menu->id != App::kStatusMenuId)
            title.append(kPathSeparator).append(drawable(itemName(*menu->properties), glyphs));
    return title;
}

std::string MenuScreen::statusText() const
{
    switch (host) {
    case Settings::HostPresence::refused:
        return "K3DHost refused, not 64 bit";
    case Settings::HostPresence::absent:
        return "no K3DHost, " + busText();
    case Settings::HostPresence::present:
        break;
    }
    return "K3DHost: " + busText();
}

// Returns "2 buses, changed 14:03:07", in local time.
std::string MenuScreen::busText() const
{
    const auto count = std::to_string(buses.size()) + (buses.size() == 1 ? " bus" : " buses");
    if (busesChanged == 0)
        return count + ", no change so far";
    std::tm local{};
    localtime_r(&busesChanged, &local);
    char time[16];
    return count + ", changed " + std::string(time, std::strftime(time, sizeof time, "%H:%M:%S", &local));
}

std::string MenuScreen::messageText() const
{
    switch (mode) {
    case Mode::search:
        return drawable("/" + searchText, glyphs) + "_";
    case Mode::help:
        return "Press any key to return.";
    case Mode::menu:
        break;
    }
    return drawable(lastPrintedLine, glyphs);
}

std::vector<ScreenLine> MenuScreen::menuLines(int height, int width)
{
    const auto rows = navigator.rows();
    const int count = static_cast<int>(rows.size());
    drawnTop = navigator.firstRow(height);
    std::vector<ScreenLine> drawn;
    for (int row = drawnTop; row < std::min(drawnTop + height, count); ++row) {
        const auto& item = *rows[static_cast<std::size_t>(row)];
        const bool isSelected = item.id == navigator.selected();
        drawn.push_back({rowText(item, isSelected, width, glyphs), styleOf(*item.properties), isSelected});
    }
    if (rows.empty())
        drawn.push_back({fitToWidth("  (empty)", width, glyphs), Style::greyed});
    return drawn;
}

std::vector<ScreenLine> MenuScreen::matchLines(int height, int width)
{
    const int count = static_cast<int>(matches.size());
    drawnTop = std::max(0, match - height + 1);
    std::vector<ScreenLine> drawn;
    for (int row = drawnTop; row < std::min(drawnTop + height, count); ++row) {
        const bool isSelected = row == match;
        const auto text =
            (isSelected ? "> " : "  ") + drawable(matches[static_cast<std::size_t>(row)].path, glyphs);
        drawn.push_back({fitToWidth(text, width, glyphs), Style::plain, isSelected});
    }
    if (matches.empty())
        drawn.push_back({fitToWidth("  no match", width, glyphs), Style::greyed});
    return drawn;
}

} // namespace Kest::Terminal
