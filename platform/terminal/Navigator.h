// Where one is in the menu: the submenus that are open and what is selected in each.
#pragma once

#include "app/MenuSnapshot.h"

#include <vector>

namespace Kest::Terminal {

/// Holds on to items by their ids, so that a change of the menu moves nothing under the user's hand: what is
/// gone is left, upwards, and of a selected row that is gone the nearest one is selected.
class Navigator {
public:
    /// The menu is this now.
    void show(App::ItemSnapshot statusMenu);
    const App::ItemSnapshot& statusMenu() const { return shown; }

    /// The innermost open menu, and those that it is in, from the status menu on. Valid until the next
    /// `show`.
    const App::ItemSnapshot& menu() const;
    std::vector<const App::ItemSnapshot*> openMenus() const;
    /// What is seen of the open menu, separators too. Valid until the next `show`.
    std::vector<const App::ItemSnapshot*> rows() const;

    /// `kStatusMenuId` when there is nothing to select.
    App::ItemId selected() const { return levels.back().selected; }
    void select(App::ItemId id);
    /// Down by so many rows that can be selected, up when negative; stops at the ends.
    void moveBy(int steps);

    /// Opens the submenu of an item of the open menu: what is on is selected in it, or its first row.
    void enter(App::ItemId submenu);
    /// Back to the menu above. False at the top.
    bool leave();
    /// Selects an item at any depth, with all submenus on the way open; does nothing when there is none.
    void goTo(App::ItemId id);

    /// The first row to draw of the open menu in a window of `height` rows: moves only as far as it must for
    /// the selected one to be seen.
    int firstRow(int height);

private:
    struct Level {
        App::ItemId menu = App::kStatusMenuId;
        App::ItemId selected = App::kStatusMenuId;
        int row = 0; // of the selected item
        int top = 0; // the first row that is drawn
    };

    bool isOpenable(const App::ItemSnapshot& in, App::ItemId submenu) const;
    void settle();
    void selectNearest(int row);

    App::ItemSnapshot shown{.hasSubmenu = true, .items = {}};
    std::vector<Level> levels{{}};
};

} // namespace Kest::Terminal
