// Support for a panel that draws every submenu inside the one menu, between its rows: GNOME's extension.
#pragma once

#include "platform/statusnotifier/MenuMessages.h"

#include <string>
#include <vector>

namespace Kest::StatusNotifier {

/// Such a panel scrolls a submenu that is too tall, and then does not draw submenus inside it. So it gets one
/// level of submenus: an entry of a submenu that has a submenu is a plain row, and choosing it adds the rows
/// of that submenu to the top level. At most one panel. Main thread only.
class AccordionPanel {
public:
    /// Recognises the panel by the properties that it requests.
    void recordRequest(const std::string& client, const LayoutRequest& request);
    void reset() { name.clear(); }
    bool is(const std::string& client) const { return !name.empty() && name == client; }
    const char* busName() const { return name.c_str(); }

    /// Returns the whole menu, with one level of submenus.
    Layout layout(const App::MenuModel& menu) const;
    static Properties properties(const App::MenuItem& item);

    /// Returns the labels that this panel needs in another form, to be sent after the updates for all panels.
    std::vector<ItemUpdate> corrections(const std::vector<ItemUpdate>& updates) const;

    /// Adds the rows of the item's submenu to the top level. Returns false if the panel draws the submenu
    /// itself or the item has none.
    bool choose(const App::MenuItem& item);

private:
    std::string name; // on the bus; empty without such a panel
    App::ItemId chosen = App::kStatusMenuId;
};

} // namespace Kest::StatusNotifier
