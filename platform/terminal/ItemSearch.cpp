#include "platform/terminal/ItemSearch.h"

#include "platform/terminal/Cells.h"
#include "platform/terminal/TextMenu.h"

#include <map>

namespace Kest::Terminal {
namespace {

void search(const App::ItemSnapshot& menu, const std::string& menuPath, const std::u32string& part,
            std::vector<SearchMatch>& matches)
{
    for (const auto& item : menu.items) {
        if (!isListed(*item.properties))
            continue;
        const auto name = itemName(*item.properties);
        auto path = menuPath;
        path.append(path.empty() ? "" : kPathSeparator).append(name);
        if (folded(name).find(part) != std::u32string::npos)
            matches.push_back({item.id, path});
        search(item, path, part, matches);
    }
}

struct Step {
    const App::ItemSnapshot* item = nullptr;
    std::string name;
    int items = 0; // with that name
};

bool begins(std::string_view path, const std::string& name)
{
    return path.starts_with(name) &&
           (path.size() == name.size() || path.substr(name.size()).starts_with(kPathSeparator));
}

// Goes by the items, not by the arrows: a title may contain one itself.
Step takeStep(const App::ItemSnapshot& menu, std::string_view path)
{
    std::map<std::string, int> total;
    for (const auto& item : menu.items)
        if (isListed(*item.properties))
            ++total[printable(itemName(*item.properties))];
    Step longest;
    std::map<std::string, int> seen;
    for (const auto& item : menu.items) {
        if (!isListed(*item.properties))
            continue;
        auto name = printable(itemName(*item.properties));
        const auto numbered = name + " #" + std::to_string(++seen[name]);
        if (total[name] > 1 && begins(path, numbered))
            name = numbered;
        if (!begins(path, name) || name.size() < longest.name.size())
            continue;
        const bool isSame = name == longest.name;
        longest = {&item, std::move(name), isSame ? longest.items + 1 : 1};
    }
    return longest;
}

} // namespace

std::vector<SearchMatch> findItems(const App::ItemSnapshot& statusMenu, const std::string& part)
{
    std::vector<SearchMatch> matches;
    search(statusMenu, {}, folded(part), matches);
    return matches;
}

FoundItem findByPath(const App::ItemSnapshot& statusMenu, std::string_view path)
{
    const auto* menu = &statusMenu;
    std::string where = "the menu";
    for (auto rest = path;;) {
        const auto [item, name, items] = takeStep(*menu, rest);
        if (item == nullptr)
            return {nullptr,
                    "no item \"" + std::string(rest.substr(0, rest.find(kPathSeparator))) + "\" in " + where};
        if (items > 1)
            return {nullptr, std::string("several items \"").append(name).append("\" in ").append(where) +
                                 ": add #1, #2, ... to the name"};
        if (rest.size() == name.size())
            return {item, {}};
        rest.remove_prefix(name.size() + kPathSeparator.size());
        menu = item;
        where = std::string(path.substr(0, path.size() - rest.size() - kPathSeparator.size()));
    }
}

} // namespace Kest::Terminal
