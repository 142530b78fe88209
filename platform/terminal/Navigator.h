// The position in the menu: the open submenus and the selected item of each.
#pragma once

#include "app/MenuSnapshot.h"

#include <vector>

namespace Kest::Terminal {

/// Refers to items by their ids, so that a change of the menu does not move the selection. When an open
/// submenu is removed, its parent becomes the innermost open menu; when the selected row is removed, the
/// nearest row is selected.
class Navigator {
public:
    /// Replaces the menu.
    void show(App::ItemSnapshot statusMenu);
    const App::ItemSnapshot& statusMenu() const { return shown; }

    /// The innermost open menu, and all open menus from the status menu on. Valid until the next `show`.
    const App::ItemSnapshot& menu() const;
    std::vector<const App::ItemSnapshot*> openMenus() const;
    /// Returns the visible items of the open menu, with separators. Valid until the next `show`.
    std::vector<const App::ItemSnapshot*> rows() const;

    /// Returns `kStatusMenuId` if there is nothing to select.
    App::ItemId selected() const { return levels.back().selected; }
    void select(App::ItemId id);
    /// Moves down by `steps` selectable rows, up if negative; stops at the ends.
    void moveBy(int steps);

    /// Opens the submenu of an item in the open menu and selects its first item that is on, or else its first
    /// row.
    void enter(App::ItemId submenu);
    /// Closes the innermost submenu. Returns false if none is open.
    bool leave();
    /// Selects an item at any depth and opens all submenus that contain it; does nothing if there is none.
    void goTo(App::ItemId id);

    /// Returns the first row of the open menu to draw in a window of `height` rows; scrolls only as far as
    /// the selected row requires.
    int firstRow(int height);

private:
    struct Level {
        App::ItemId menu = App::kStatusMenuId;
        App::ItemId selected = App::kStatusMenuId;
        int row = 0; // of the selected item
        int top = 0; // the first drawn row
    };

    bool isOpenable(const App::ItemSnapshot& in, App::ItemId submenu) const;
    void repairSelection();
    void selectNearest(int row);

    App::ItemSnapshot shown{.hasSubmenu = true, .items = {}};
    std::vector<Level> levels{{}};
};

} // namespace Kest::Terminal
