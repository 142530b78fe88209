// A panel that draws every submenu inside the one menu, between its rows: GNOME's extension.
#pragma once

#include "platform/statusnotifier/MenuMessages.h"

#include <string>
#include <vector>

namespace Kest::StatusNotifier {

/// Such a panel scrolls a submenu that is too tall, and then draws nothing of a submenu inside it. So it gets
/// one level of submenus: an entry of a submenu that leads to a submenu is a plain row, and choosing it puts
/// the rows of that submenu into the top level. At most one panel. Main thread only.
class AccordionPanel {
public:
    /// Recognises the panel by the properties that it requests.
    void noteRequest(const std::string& client, const LayoutRequest& request);
    void forget() { name.clear(); }
    bool is(const std::string& client) const { return !name.empty() && name == client; }
    const char* busName() const { return name.c_str(); }

    /// The whole menu, with one level of submenus.
    Layout layout(const App::MenuModel& menu) const;
    static Properties properties(const App::MenuItem& item);

    /// Updates for this panel alone, after the same ones for all panels: labels that it shows differently.
    std::vector<ItemUpdate> corrections(const std::vector<ItemUpdate>& updates) const;

    /// Puts the rows of the item's submenu into the top level. Returns false for an item that the panel draws
    /// with its submenu, or that has none.
    bool choose(const App::MenuItem& item);

private:
    std::string name; // on the bus; empty without such a panel
    App::ItemId chosen = App::kStatusMenuId;
};

} // namespace Kest::StatusNotifier
