#include "app/ItemPath.h"

#include "text/Printable.h"
#include "text/Utf8.h"

#include <juce_core/juce_core.h>

#include <algorithm>
#include <map>
#include <numeric>

namespace Kest::App {
namespace {

// Limits of the search for a suggestion, whose time is proportional to both paths' lengths and the items.
constexpr std::size_t kMaxComparedBytes = 100;
constexpr std::size_t kMaxComparedItems = 1000;

struct Step {
    const ItemSnapshot* item = nullptr;
    std::string name;
    int items = 0; // with that name
};

using Counts = std::map<std::string, int>; // of items, by name

Counts countNames(const ItemSnapshot& menu)
{
    Counts counts;
    for (const auto& item : menu.items)
        if (isListed(*item.properties))
            ++counts[Text::printable(itemName(*item.properties))];
    return counts;
}

bool begins(std::string_view path, const std::string& name)
{
    return path.starts_with(name) &&
           (path.size() == name.size() || path.substr(name.size()).starts_with(kPathSeparator));
}

// Compares whole names, since a name may contain a separator.
Step takeStep(const ItemSnapshot& menu, std::string_view path)
{
    const auto total = countNames(menu);
    Step found;
    Counts seen;
    for (const auto& item : menu.items) {
        if (!isListed(*item.properties))
            continue;
        auto name = Text::printable(itemName(*item.properties));
        const auto numbered = name + " #" + std::to_string(++seen[name]);
        if (total.at(name) > 1 && begins(path, numbered))
            name = numbered;
        if (!begins(path, name) || name.size() < found.name.size())
            continue;
        const bool isSame = name == found.name;
        found = {&item, std::move(name), isSame ? found.items + 1 : 1};
    }
    return found;
}

FoundItem findExactly(const ItemSnapshot& statusMenu, std::string_view path)
{
    const auto* menu = &statusMenu;
    std::string where = "the menu";
    for (auto rest = path;;) {
        const auto [item, name, items] = takeStep(*menu, rest);
        if (item == nullptr)
            return {.error = "no item \"" + std::string(rest.substr(0, rest.find(kPathSeparator))) +
                             "\" in " + where};
        if (items > 1)
            return {.path = name,
                    .error = std::string("several items \"").append(name).append("\" in ").append(where) +
                             ": add #1, #2, ... to the name"};
        if (rest.size() == name.size())
            return {.item = item, .path = std::string(path)};
        rest.remove_prefix(name.size() + kPathSeparator.size());
        menu = item;
        where = std::string(path.substr(0, path.size() - rest.size() - kPathSeparator.size()));
    }
}

std::string folded(std::string_view text)
{
    return juce::String::fromUTF8(text.data(), static_cast<int>(text.size())).toLowerCase().toStdString();
}

/// Returns how many bytes must be added, removed or replaced to turn one text into the other.
std::size_t editDistance(std::string_view one, std::string_view other)
{
    std::vector<std::size_t> row(other.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 0; i < one.size(); ++i) {
        auto diagonal = std::exchange(row[0], i + 1);
        for (std::size_t j = 0; j < other.size(); ++j) {
            const auto replaced = diagonal + (one[i] == other[j] ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({replaced, diagonal + 1, row[j] + 1});
        }
    }
    return row.back();
}

// Compares a path of one name with the items of all menus. A prefix always counts as similar.
std::string nearestPath(const std::vector<NamedItem>& items, const std::string& wanted)
{
    std::string nearest;
    auto least = wanted.size() / 2 + 1;
    for (std::size_t i = 0; i < std::min(items.size(), kMaxComparedItems); ++i) {
        auto path = folded(items[i].path);
        if (wanted.find(kPathSeparator) == std::string::npos)
            if (const auto last = path.rfind(kPathSeparator); last != std::string::npos)
                path.erase(0, last + kPathSeparator.size());
        const auto distance =
            path.starts_with(wanted)
                ? std::size_t{1}
                : editDistance(wanted, std::string_view(path).substr(0, 2 * kMaxComparedBytes));
        if (distance < least) {
            least = distance;
            nearest = items[i].path;
        }
    }
    return nearest;
}

void addNamedItems(const ItemSnapshot& menu, const std::string& prefix, std::vector<NamedItem>& found)
{
    const auto total = countNames(menu);
    Counts seen;
    for (const auto& item : menu.items) {
        if (!isListed(*item.properties))
            continue;
        const auto name = Text::printable(itemName(*item.properties));
        const int number = ++seen[name];
        const auto path = prefix + name + (total.at(name) > 1 ? " #" + std::to_string(number) : "");
        found.push_back({&item, path});
        addNamedItems(item, path + std::string(kPathSeparator), found);
    }
}

} // namespace

std::vector<NamedItem> namedItems(const ItemSnapshot& statusMenu)
{
    std::vector<NamedItem> found;
    addNamedItems(statusMenu, {}, found);
    return found;
}

FoundItem findByPath(const ItemSnapshot& statusMenu, std::string_view path)
{
    auto exact = findExactly(statusMenu, path);
    const bool canDifferInCase =
        !path.empty() && path.find('\0') == std::string_view::npos && Text::isUtf8(path);
    if (exact.item != nullptr || !exact.path.empty() || !canDifferInCase)
        return exact;
    const auto items = namedItems(statusMenu);
    const auto wanted = folded(path);
    std::vector<const NamedItem*> matches;
    for (const auto& named : items)
        if (folded(named.path) == wanted)
            matches.push_back(&named);
    if (matches.size() == 1)
        return {.item = matches.front()->item, .path = matches.front()->path};
    if (matches.size() > 1)
        return {.error = "several items \"" + std::string(path) + "\" differ only in case",
                .nearest = matches.front()->path};
    if (wanted.size() <= kMaxComparedBytes)
        exact.nearest = nearestPath(items, wanted);
    return exact;
}

} // namespace Kest::App
