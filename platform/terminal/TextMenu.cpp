#include "platform/terminal/TextMenu.h"

#include "app/Utf8.h"

#include <algorithm>

namespace Kest::Terminal {
namespace {

using App::ItemProperties;
using App::ItemSnapshot;

std::string lineOf(const ItemSnapshot& item)
{
    const auto& seen = *item.properties;
    if (seen.separator)
        return "--------";
    return markText(seen) + printable(plainLabel(seen)) + (seen.enabled ? "" : " (greyed)");
}

void addLines(const ItemSnapshot& menu, const std::string& indent, std::vector<std::string>& lines)
{
    for (const auto& item : menu.items) {
        if (item.properties->hidden)
            continue;
        lines.push_back(indent + lineOf(item));
        addLines(item, indent + "  ", lines);
    }
}

std::string pathOf(const std::string& menuPath, const ItemSnapshot& item)
{
    const auto name = printable(itemName(*item.properties));
    return menuPath.empty() ? name : menuPath + " > " + name;
}

// What is different, in words; empty when nothing that is seen here is.
std::string differenceText(const ItemProperties& before, const ItemProperties& now)
{
    std::vector<std::string> words;
    if (before.hidden != now.hidden)
        words.emplace_back(now.hidden ? "hidden" : "shown");
    if (before.on != now.on)
        words.emplace_back(now.on ? "on" : "off");
    if (before.enabled != now.enabled)
        words.emplace_back(now.enabled ? "available" : "greyed");
    if (before.red != now.red)
        words.emplace_back(now.red ? "not available" : "available again");
    if (now.view && before.view != now.view)
        words.push_back(now.view->percentage.empty() ? "no percentage" : printable(now.view->percentage));

    std::string text;
    for (const auto& word : words)
        text += (text.empty() ? ": " : ", ") + word;
    return text;
}

/// An item with nothing to tell, against which a new one is described.
const ItemProperties kPlain{.title = {}, .view = App::EntryView{}};

/// Walks both moments of the menu along the difference of the two.
class ChangeWriter {
public:
    ChangeWriter(const App::MenuDifference& ofDifference, std::vector<std::string>& toLines)
        : difference(ofDifference), lines(toLines)
    {}

    void write(const ItemSnapshot& shown, const ItemSnapshot& now, const std::string& menuPath)
    {
        if (contains(difference.reshapedMenus, now.id)) {
            for (const auto* item : missingIn(now, shown))
                lines.push_back("removed " + pathOf(menuPath, *item));
            for (const auto* item : missingIn(shown, now))
                lines.push_back("added " + pathOf(menuPath, *item) +
                                differenceText(kPlain, *item->properties));
        }
        for (const auto& item : now.items) {
            const auto* before = child(shown, item.id);
            if (before == nullptr)
                continue;
            const auto path = pathOf(menuPath, item);
            if (contains(difference.changedItems, item.id) && isSeen(*before->properties, *item.properties))
                writeChange(path, differenceText(*before->properties, *item.properties));
            if (!item.properties->hidden)
                write(*before, item, path);
        }
    }

private:
    static bool contains(const std::vector<App::ItemId>& ids, App::ItemId id)
    {
        return std::ranges::find(ids, id) != ids.end();
    }
    static const ItemSnapshot* child(const ItemSnapshot& menu, App::ItemId id)
    {
        const auto found = std::ranges::find(menu.items, id, &ItemSnapshot::id);
        return found == menu.items.end() ? nullptr : &*found;
    }
    static bool isSeen(const ItemProperties& before, const ItemProperties& now)
    {
        return !before.hidden || !now.hidden;
    }

    // Of some changes, such as a tag's, nothing is seen here.
    void writeChange(const std::string& path, const std::string& text)
    {
        if (!text.empty())
            lines.push_back("changed " + path + text);
    }

    // Visible items of the other moment that this one does not have.
    static std::vector<const ItemSnapshot*> missingIn(const ItemSnapshot& menu, const ItemSnapshot& other)
    {
        std::vector<const ItemSnapshot*> missing;
        for (const auto& item : other.items)
            if (!item.properties->separator && !item.properties->hidden && child(menu, item.id) == nullptr)
                missing.push_back(&item);
        return missing;
    }

    const App::MenuDifference& difference;
    std::vector<std::string>& lines;
};

} // namespace

std::string markText(const ItemProperties& item)
{
    switch (item.mark) {
    case App::Mark::radio:
        return item.on ? "(x) " : "( ) ";
    case App::Mark::check:
        return item.on ? "[x] " : "[ ] ";
    case App::Mark::none:
        break;
    }
    return "";
}

std::string printable(const std::string& text)
{
    auto safe = App::toUtf8(text);
    for (std::size_t i = 0; i < safe.size(); ++i) {
        const auto byte = static_cast<unsigned char>(safe[i]);
        if (byte < 0x20 || byte == 0x7F)
            safe[i] = '?';
        else if (byte == 0xC2 && static_cast<unsigned char>(safe[i + 1]) < 0xA0) // U+0080 to U+009F
            safe.replace(i, 2, "?");
    }
    return safe;
}

std::string itemName(const ItemProperties& item)
{
    if (!item.view)
        return item.title;
    auto withoutPercentage = item;
    withoutPercentage.view->percentage.clear();
    return plainLabel(withoutPercentage);
}

std::vector<std::string> menuLines(const ItemSnapshot& menu)
{
    std::vector<std::string> lines;
    addLines(menu, "  ", lines);
    return lines;
}

std::vector<std::string> changeLines(const ItemSnapshot& shown, const ItemSnapshot& now)
{
    std::vector<std::string> lines;
    const auto difference = diff(shown, now);
    ChangeWriter(difference, lines).write(shown, now, "");
    return lines;
}

} // namespace Kest::Terminal
