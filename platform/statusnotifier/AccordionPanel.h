// Supports GNOME's tray extension, a panel that draws each submenu between the rows of the status menu.
#pragma once

#include "platform/statusnotifier/MenuMessages.h"

#include <string>
#include <vector>

namespace Kest::StatusNotifier {

/// Adapts the menu to one such panel. The panel scrolls a tall submenu, and does not draw submenus inside a
/// scrolled submenu. So the panel gets only one level of submenus, and a submenu inside a submenu becomes a
/// plain row. When the user chooses that row, the rows of its submenu are added to the top level. Main thread
/// only.
class AccordionPanel {
public:
    /// Records `client`, the bus name of the caller, as the panel if `request` identifies the panel: only
    /// this panel requests the status menu with exactly the properties "type" and "children-display".
    void recordRequest(const std::string& client, const LayoutRequest& request);
    /// Forgets the panel.
    void reset() { name.clear(); }
    /// Returns whether `client` is the panel's name on the bus.
    bool is(const std::string& client) const { return !name.empty() && name == client; }
    /// Returns the panel's name on the bus; an empty text if no such panel is known.
    const char* busName() const { return name.c_str(); }

    /// Returns the whole menu with one level of submenus, and with the rows that `choose` has added.
    Layout layout(const App::MenuModel& menu) const;
    /// Returns the properties of an item as this panel needs them.
    static Properties properties(const App::MenuItem& item);

    /// Returns one update for each label in `updates` that this panel needs with fewer underscores. Send
    /// `updates` to all panels first, then the result to this panel. Returns an empty list if no such panel
    /// is known.
    std::vector<ItemUpdate> corrections(const std::vector<ItemUpdate>& updates) const;

    /// Makes `layout` add the rows of the item's submenu to the top level, instead of those of an earlier
    /// call, and returns true. If the item is at the top level or has no submenu, does nothing and returns
    /// false.
    bool choose(const App::MenuItem& item);

private:
    std::string name;                        // on the bus; empty if no such panel is known
    App::ItemId chosen = App::kStatusMenuId; // its submenu's rows are added to the top level
};

} // namespace Kest::StatusNotifier
