// Support for a panel that draws each submenu between the rows of the status menu: GNOME's extension.
#pragma once

#include "platform/statusnotifier/MenuMessages.h"

#include <string>
#include <vector>

namespace Kest::StatusNotifier {

/// Adapts the menu to that panel, at most one at a time. The panel scrolls a submenu that is too tall, and
/// then does not draw the submenus inside it. So the panel gets only one level of submenus. A submenu inside
/// a submenu is a plain row; when the user chooses the row, the rows of its submenu are added to the top
/// level. Main thread only.
class AccordionPanel {
public:
    /// Recognises the panel by the properties that it requests for the whole menu, and records the name of
    /// the panel.
    void recordRequest(const std::string& client, const LayoutRequest& request);
    /// Forgets the panel.
    void reset() { name.clear(); }
    /// Returns whether `client`, a name on the bus, is the panel.
    bool is(const std::string& client) const { return !name.empty() && name == client; }
    /// Returns the panel's name on the bus; an empty text if no such panel is known.
    const char* busName() const { return name.c_str(); }

    /// Returns the whole menu with one level of submenus, and with the rows that `choose` added.
    Layout layout(const App::MenuModel& menu) const;
    /// Returns the properties of an item as this panel needs them.
    static Properties properties(const App::MenuItem& item);

    /// Returns the labels in `updates` that this panel needs in another form. Send them to the panel after
    /// `updates`, which are sent to all panels. Empty if no such panel is known.
    std::vector<ItemUpdate> corrections(const std::vector<ItemUpdate>& updates) const;

    /// Adds the rows of the item's submenu to the top level of `layout`, instead of those added before.
    /// Returns false if the item is in the status menu or has no submenu.
    bool choose(const App::MenuItem& item);

private:
    std::string name;                        // on the bus; empty if no such panel is known
    App::ItemId chosen = App::kStatusMenuId; // the item whose rows are added to the top level
};

} // namespace Kest::StatusNotifier
