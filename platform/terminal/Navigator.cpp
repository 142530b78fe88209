#include "platform/terminal/Navigator.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>

namespace Kest::Terminal {
namespace {

using App::ItemId;
using App::ItemSnapshot;

// Appends the ids of the items whose submenus contain the item, outermost first. Returns false if the item is
// not visible in the menu.
bool collectPath(const ItemSnapshot& menu, ItemId id, std::vector<ItemId>& path)
{
    for (const auto& item : menu.items) {
        if (item.properties->hidden)
            continue;
        if (item.id == id)
            return true;
        path.push_back(item.id);
        if (collectPath(item, id, path))
            return true;
        path.pop_back();
    }
    return false;
}

} // namespace

void Navigator::show(ItemSnapshot statusMenu)
{
    shown = std::move(statusMenu);
    repairSelection();
}

const ItemSnapshot& Navigator::menu() const { return *openMenus().back(); }

std::vector<const ItemSnapshot*> Navigator::openMenus() const
{
    std::vector<const ItemSnapshot*> menus{&shown};
    for (auto level = std::next(levels.begin()); level != levels.end(); ++level)
        menus.push_back(&*std::ranges::find(menus.back()->items, level->menu, &ItemSnapshot::id));
    return menus;
}

std::vector<const ItemSnapshot*> Navigator::rows() const
{
    std::vector<const ItemSnapshot*> visible;
    for (const auto& item : menu().items)
        if (!item.properties->hidden)
            visible.push_back(&item);
    return visible;
}

void Navigator::select(ItemId id)
{
    levels.back().selected = id;
    repairSelection();
}

void Navigator::moveBy(int steps)
{
    const auto all = rows();
    const int direction = steps < 0 ? -1 : 1;
    int left = std::abs(steps);
    for (int row = levels.back().row + direction; left > 0 && row >= 0 && row < static_cast<int>(all.size());
         row += direction) {
        const auto& item = *all[static_cast<std::size_t>(row)];
        if (item.properties->separator)
            continue;
        --left;
        levels.back().selected = item.id;
        levels.back().row = row;
    }
}

void Navigator::enter(ItemId submenu)
{
    if (!isOpenable(menu(), submenu))
        return;
    select(submenu);
    levels.push_back({.menu = submenu});
    for (const auto* item : rows())
        if (item->properties->on)
            return select(item->id);
    repairSelection();
}

bool Navigator::leave()
{
    if (levels.size() == 1)
        return false;
    levels.pop_back();
    repairSelection();
    return true;
}

void Navigator::goTo(ItemId id)
{
    std::vector<ItemId> path;
    if (!collectPath(shown, id, path))
        return;
    levels.assign(1, {});
    for (const auto submenu : path) {
        select(submenu);
        levels.push_back({.menu = submenu});
    }
    select(id);
}

int Navigator::firstRow(int height)
{
    auto& level = levels.back();
    const int count = static_cast<int>(rows().size());
    level.top = std::clamp(level.top, std::max(0, level.row - height + 1), level.row);
    level.top = std::min(level.top, std::max(0, count - height));
    return level.top;
}

bool Navigator::isOpenable(const ItemSnapshot& in, ItemId submenu) const
{
    const auto item = std::ranges::find(in.items, submenu, &ItemSnapshot::id);
    return item != in.items.end() && item->hasSubmenu && !item->properties->hidden;
}

void Navigator::repairSelection()
{
    const ItemSnapshot* open = &shown;
    for (std::size_t depth = 1; depth < levels.size(); ++depth) {
        if (!isOpenable(*open, levels[depth].menu)) {
            levels.resize(depth);
            break;
        }
        open = &*std::ranges::find(open->items, levels[depth].menu, &ItemSnapshot::id);
    }

    auto& level = levels.back();
    const auto all = rows();
    const auto found = std::ranges::find_if(
        all, [&](const auto* item) { return item->id == level.selected && !item->properties->separator; });
    if (found == all.end())
        return selectNearest(level.row);
    level.row = static_cast<int>(found - all.begin());
}

void Navigator::selectNearest(int row)
{
    auto& level = levels.back();
    const auto all = rows();
    level.selected = App::kStatusMenuId;
    int nearest = static_cast<int>(all.size()) + row;
    for (int i = 0; i < static_cast<int>(all.size()); ++i) {
        const auto& item = *all[static_cast<std::size_t>(i)];
        if (item.properties->separator || std::abs(i - row) >= nearest)
            continue;
        nearest = std::abs(i - row);
        level.selected = item.id;
        level.row = i;
    }
}

} // namespace Kest::Terminal
