#include "platform/statusnotifier/Panels.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace Kest::StatusNotifier {

std::set<App::ItemId> Panels::announceNew(const std::string& panel, const App::ItemSnapshot& menu)
{
    constexpr std::size_t kMaxMenus = 64; // two per panel; exceeded only if clients change
    std::set<App::ItemId> submenus;
    for (const auto& item : menu.items)
        if (item.hasSubmenu)
            submenus.insert(item.id);
    if (submenus.empty())
        return {};
    if (announced.size() >= kMaxMenus)
        announced.clear();
    auto& known = announced[{panel, menu.id}];
    std::set<App::ItemId> added;
    std::ranges::set_difference(submenus, known, std::inserter(added, added.end()));
    known = std::move(submenus);
    return added;
}

std::set<App::ItemId> Panels::aboutToShow(App::ItemId menu)
{
    const bool isOpening = menu == App::kStatusMenuId && !open.contains(menu);
    return isOpening ? allClosed() : std::set<App::ItemId>();
}

std::set<App::ItemId> Panels::opened(const std::string& panel, App::ItemId menu)
{
    if (announced.contains({panel, App::kStatusMenuId}))
        return {};
    auto late = menu == App::kStatusMenuId ? allClosed() : std::set<App::ItemId>();
    open.insert(menu);
    return late;
}

std::set<App::ItemId> Panels::closed(App::ItemId menu)
{
    open.erase(menu);
    return open.empty() ? std::exchange(held, {}) : std::set<App::ItemId>();
}

std::set<App::ItemId> Panels::allClosed()
{
    open.clear();
    return std::exchange(held, {});
}

bool Panels::holdBackIfOpen(App::ItemId menu)
{
    if (!open.empty())
        held.insert(menu);
    return !open.empty();
}

std::set<App::ItemId> Panels::reset()
{
    announced.clear();
    return allClosed();
}

} // namespace Kest::StatusNotifier
