// A small menu for tests of the code that shows menus.
#pragma once

#include "app/MenuSnapshot.h"

#include <string>
#include <utility>
#include <vector>

namespace Kest::Test {

using Items = std::vector<App::ItemSnapshot>;

inline App::ItemSnapshot leaf(App::ItemId id, App::ItemProperties properties)
{
    return {id, std::move(properties), false, {}};
}

inline App::ItemSnapshot plainLeaf(App::ItemId id, const std::string& title)
{
    return leaf(id, {.title = title, .action = App::Action::restartService});
}

inline App::ItemSnapshot bus(App::ItemId id, const std::string& title, bool on = false)
{
    return leaf(
        id, {.title = title, .action = App::Action::setDefaultKestBus, .mark = App::Mark::radio, .on = on});
}

inline App::ItemSnapshot statusMenu(Items items) { return {.hasSubmenu = true, .items = std::move(items)}; }

/// Items with their ids: Restart (1), a separator (2), Buses (3) with Main Bus (4), Dialog (5, on) and Music
/// (6), a hidden submenu (7) with Hidden Dialog (8), About (9).
inline App::ItemSnapshot sampleMenu()
{
    const Items buses = {bus(4, "Main Bus"), bus(5, "Dialog", true), bus(6, "Music")};
    return statusMenu({plainLeaf(1, "Restart"),
                       leaf(2, {.separator = true}),
                       {3, App::ItemProperties{.title = "Buses"}, true, buses},
                       {7, App::ItemProperties{.hidden = true}, true, {plainLeaf(8, "Hidden Dialog")}},
                       plainLeaf(9, "About")});
}

/// Fills a menu of a model with the items of a snapshot.
inline void fill(App::Menu& menu, App::MenuModel& model, const App::ItemSnapshot& from)
{
    for (const auto& item : from.items) {
        auto& added = menu.addItem(std::make_unique<App::MenuItem>(item.properties));
        if (!item.hasSubmenu)
            continue;
        added.setSubmenu(std::make_unique<App::Menu>(model));
        fill(*added.submenu(), model, item);
    }
}

} // namespace Kest::Test
