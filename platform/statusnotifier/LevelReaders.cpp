#include "platform/statusnotifier/LevelReaders.h"

#include <algorithm>
#include <iterator>

namespace Kest::StatusNotifier {

std::vector<App::ItemId> LevelReaders::unannounced(const std::string& reader, const App::ItemSnapshot& menu)
{
    constexpr std::size_t kMaxMenus = 64; // two of each panel; more only if clients come and go
    std::set<App::ItemId> submenus;
    for (const auto& item : menu.items)
        if (item.hasSubmenu)
            submenus.insert(item.id);
    if (submenus.empty())
        return {};
    if (announced.size() >= kMaxMenus)
        announced.clear();
    auto& known = announced[{reader, menu.id}];
    std::vector<App::ItemId> added;
    std::ranges::set_difference(submenus, known, std::back_inserter(added));
    known = std::move(submenus);
    return added;
}

} // namespace Kest::StatusNotifier
