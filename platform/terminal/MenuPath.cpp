#include "platform/terminal/MenuPath.h"

#include "platform/terminal/TextMenu.h"

#include <map>

namespace Kest::Terminal {
namespace {

constexpr std::string_view kStep = " > ";

struct Step {
    const App::ItemSnapshot* item = nullptr;
    std::string_view rest; // of the path, behind this item
};

// Goes by the items, not by the arrows: a title may hold one itself.
Step takeStep(const App::ItemSnapshot& menu, std::string_view path)
{
    Step longest;
    std::size_t longestName = 0;
    std::map<std::string, int> seen;
    for (const auto& item : menu.items) {
        const auto& properties = *item.properties;
        if (properties.hidden || properties.separator)
            continue;
        auto name = printable(itemName(properties));
        if (const int count = ++seen[name]; count > 1)
            name += " #" + std::to_string(count);
        const bool matches = path.starts_with(name) &&
                             (path.size() == name.size() || path.substr(name.size()).starts_with(kStep));
        if (!matches || (longest.item != nullptr && name.size() <= longestName))
            continue;
        longestName = name.size();
        longest = {&item,
                   path.size() == name.size() ? std::string_view() : path.substr(name.size() + kStep.size())};
    }
    return longest;
}

} // namespace

FoundItem findByPath(const App::ItemSnapshot& statusMenu, std::string_view path)
{
    const auto* menu = &statusMenu;
    std::string where = "the menu";
    for (auto rest = path;;) {
        const auto step = takeStep(*menu, rest);
        if (step.item == nullptr)
            return {nullptr, "no item \"" + std::string(rest.substr(0, rest.find(kStep))) + "\" in " + where};
        if (step.rest.empty())
            return {step.item, {}};
        menu = step.item;
        where = std::string(path.substr(0, path.size() - step.rest.size() - kStep.size()));
        rest = step.rest;
    }
}

} // namespace Kest::Terminal
