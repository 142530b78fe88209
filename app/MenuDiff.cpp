#include "app/MenuDiff.h"

#include <algorithm>
#include <unordered_map>

namespace Kest::App {
namespace {

void compareMenus(const ItemSnapshot& shown, const ItemSnapshot& now, MenuDifference& difference);

void compareItems(const ItemSnapshot& shown, const ItemSnapshot& now, MenuDifference& difference)
{
    if (shown.properties != now.properties || shown.hasSubmenu != now.hasSubmenu)
        difference.changedItems.push_back(now.id);
    compareMenus(shown, now, difference);
}

void compareMenus(const ItemSnapshot& shown, const ItemSnapshot& now, MenuDifference& difference)
{
    if (!std::ranges::equal(shown.items, now.items, {}, &ItemSnapshot::id, &ItemSnapshot::id))
        difference.reshapedMenus.push_back(now.id);

    std::unordered_map<ItemId, const ItemSnapshot*> before;
    for (const auto& item : shown.items)
        before.emplace(item.id, &item);
    for (const auto& item : now.items)
        if (const auto same = before.find(item.id); same != before.end())
            compareItems(*same->second, item, difference);
}

} // namespace

MenuDifference diff(const ItemSnapshot& shown, const ItemSnapshot& now)
{
    MenuDifference difference;
    compareItems(shown, now, difference);
    return difference;
}

} // namespace Kest::App
