// The position in the menu: the open submenus, and the selected item of each open menu.
#pragma once

#include "app/MenuSnapshot.h"

#include <vector>

namespace Kest::Terminal {

/// Identifies items by their ids, so that the selection is kept when the menu changes. If an open submenu is
/// removed or hidden, the menu that contained it becomes the innermost open menu. If the selected item is
/// removed or hidden, the nearest row is selected. A separator is a row that cannot be selected. Main thread
/// only.
class Navigator {
public:
    /// Replaces the menu.
    void show(App::ItemSnapshot statusMenu);
    const App::ItemSnapshot& statusMenu() const { return shown; }

    /// Returns the item whose submenu is the innermost open menu. Valid until the next call of `show`.
    const App::ItemSnapshot& menu() const;
    /// Returns, for each open menu, the item that has it as its submenu: the status menu first, the innermost
    /// open menu last. Valid until the next call of `show`.
    std::vector<const App::ItemSnapshot*> openMenus() const;
    /// Returns the visible items of the innermost open menu, separators included. Valid until the next call
    /// of `show`.
    std::vector<const App::ItemSnapshot*> rows() const;

    /// Returns the selected item of the innermost open menu; `kStatusMenuId` if that menu has no item to
    /// select.
    App::ItemId selected() const { return levels.back().selected; }
    /// Selects an item of the innermost open menu. If the menu has no visible item with this id, or the item
    /// is a separator, keeps the selection.
    void select(App::ItemId id);
    /// Moves the selection down by `steps` rows, or up if `steps` is negative. Does not count separators, and
    /// stops at the first and the last row.
    void moveBy(int steps);

    /// Opens the submenu of the item `submenu`. In the submenu, selects the first item that is on, or the
    /// first row that can be selected if no item is on. Does nothing if the item is not a visible item of the
    /// innermost open menu or has no submenu.
    void enter(App::ItemId submenu);
    /// Closes the innermost submenu. Returns false if none is open.
    bool leave();
    /// Selects an item at any depth and opens all submenus that contain it. Does nothing if no visible item
    /// has the id.
    void goTo(App::ItemId id);

    /// Returns the index in `rows` of the first row to draw in a window of `height` rows. Scrolls only as far
    /// as needed to show the selected row.
    int firstRow(int height);

private:
    struct Level {
        App::ItemId menu = App::kStatusMenuId;
        App::ItemId selected = App::kStatusMenuId;
        int row = 0; // index of the selected item in `rows`
        int top = 0; // index of the first drawn row
    };

    bool isOpenable(const App::ItemSnapshot& in, App::ItemId submenu) const;
    void repairSelection();
    void selectNearest(int row);

    App::ItemSnapshot shown{.hasSubmenu = true, .items = {}};
    std::vector<Level> levels{{}};
};

} // namespace Kest::Terminal
