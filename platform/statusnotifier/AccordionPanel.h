// A panel that draws every submenu inside the one menu, between its rows: GNOME's extension.
#pragma once

#include "platform/statusnotifier/MenuMessages.h"

#include <set>
#include <string>

namespace Kest::StatusNotifier {

/// Such a panel reads the whole menu after each LayoutUpdated, and closes its submenus as it does; it scrolls
/// a submenu that is too tall, and then draws nothing of a submenu inside it. So layouts wait while it shows
/// a submenu, and it gets one level of submenus: an entry of a submenu that leads to a submenu is a plain
/// row, and choosing it puts the rows of that submenu into the top level. At most one panel. Main
/// thread only.
class AccordionPanel {
public:
    /// Recognises the panel by the properties that it requests. Returns whether this is another one.
    bool noteRequest(const std::string& client, const LayoutRequest& request);
    bool is(const std::string& client) const { return !name.empty() && name == client; }

    /// The whole menu, with one level of submenus.
    Layout layout(const App::MenuModel& menu) const;
    static Properties properties(const App::MenuItem& item);

    /// Updates for this panel alone, after the same ones for all panels: labels that it shows differently.
    std::vector<ItemUpdate> corrections(const std::vector<ItemUpdate>& updates) const;
    const char* busName() const { return name.c_str(); }

    /// Puts the rows of the item's submenu into the top level. Returns false for an item that the panel draws
    /// with its submenu, or that has none.
    bool choose(const App::MenuItem& item);

    void submenuOpened() { showsSubmenu = true; }
    /// Returns the menus whose layout has changed since a submenu was opened.
    std::set<App::ItemId> menuClosed();
    /// Returns whether the menu's layout waits until the menu is closed.
    bool holds(App::ItemId menu);
    /// Expects another panel. Returns what `menuClosed` does.
    std::set<App::ItemId> forget();

private:
    std::string name; // on the bus; empty without such a panel
    App::ItemId chosen = App::kStatusMenuId;
    bool showsSubmenu = false;
    std::set<App::ItemId> held;
};

} // namespace Kest::StatusNotifier
