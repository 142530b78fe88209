#include "platform/terminal/MenuRow.h"

#include "platform/terminal/TextMenu.h"

#include <algorithm>
#include <optional>

namespace Kest::Terminal {
namespace {

constexpr int kShortestBar = 8;
constexpr int kLongestBar = 40;

// " [####......]  42%"; `width` is that of the bar's inside. Empty for no percentage.
std::string progressBar(const std::optional<int>& percent, int width, Glyphs glyphs)
{
    if (!percent)
        return {};
    const int shown = std::clamp(*percent, 0, 100);
    const int done = shown * width / 100;
    const auto number = std::to_string(shown) + "%";
    return " [" + repeated(glyphs.done(), done) + repeated(glyphs.toDo(), width - done) + "] " +
           std::string(4 - number.size(), ' ') + number;
}

std::string labelText(const App::ItemSnapshot& item, int width, Glyphs glyphs)
{
    const auto& seen = *item.properties;
    const std::string greyed = seen.enabled ? "" : " (greyed)";
    if (!seen.view)
        return fitted(markText(seen) + drawable(plainLabel(seen), glyphs) + greyed, width, glyphs);

    auto bar = progressBar(seen.view->percent, std::clamp(width / 3, kShortestBar, kLongestBar), glyphs);
    const auto name = markText(seen) + drawable(itemName(seen), glyphs) + greyed;
    return fitted(name, width - cells(bar), glyphs) + bar;
}

} // namespace

std::string rowText(const App::ItemSnapshot& item, bool isSelected, int width, Glyphs glyphs)
{
    if (item.properties->separator)
        return "  " + repeated(glyphs.separator(), width - 4) + "  ";
    const std::string pointer = isSelected ? "> " : "  ";
    const std::string arrow = item.hasSubmenu ? std::string(" ") + glyphs.below() : "  ";
    return pointer + labelText(item, width - 4, glyphs) + arrow;
}

} // namespace Kest::Terminal
