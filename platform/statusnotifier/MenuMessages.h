// Reads and appends the arguments of the methods and signals of com.canonical.dbusmenu.
#pragma once

#include "platform/statusnotifier/Bus.h"

#include <set>
#include <string>
#include <utility>
#include <vector>

namespace Kest::StatusNotifier {

/// What a panel reports about an item.
enum class PanelEvent { clicked, opened, closed, other };
using PanelEvents = std::vector<std::pair<App::ItemId, PanelEvent>>;

/// The arguments of GetLayout.
struct LayoutRequest {
    App::ItemId parent = App::kStatusMenuId;
    int depth = 0;                    // levels of submenus; -1: all
    std::set<std::string> properties; // requested properties; empty: all
};

// Each function returns a negative errno on failure, for example if the message is malformed; otherwise 0 or
// more. The quoted text is the D-Bus signature of what the function reads or appends.

/// "ai". Replaces `ids` by the ids in the message, each once, in ascending order.
int readIds(sd_bus_message* message, std::vector<App::ItemId>& ids);
/// "iias": parent, depth, properties. `request` must have no properties before the call.
int readLayoutRequest(sd_bus_message* message, LayoutRequest& request);
/// "isvu": id, event, data, timestamp. Adds the event to `events`; ignores data and timestamp.
int readEvent(sd_bus_message* message, PanelEvents& events);
/// "a(isvu)". Adds each event of the array to `events`, as `readEvent` does.
int readEvents(sd_bus_message* message, PanelEvents& events);

int appendIds(sd_bus_message* message, const std::vector<App::ItemId>& ids);           // "ai"
int appendItem(sd_bus_message* message, App::ItemId id, const Properties& properties); // "(ia{sv})"
/// "(ia{sv}av)": id, properties, children.
int appendLayout(sd_bus_message* message, const Layout& layout);
/// "a(ia{sv})a(ias)": updated properties by item id, names of removed properties by item id.
int appendUpdates(sd_bus_message* message, const std::vector<ItemUpdate>& items);
/// The same signature. Appends an update to `changeableProperties` for each item below `menu`, at any depth.
int appendWholeMenu(sd_bus_message* message, const App::ItemSnapshot& menu);

} // namespace Kest::StatusNotifier
