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

// Each function returns the result of sd-bus, which is a negative errno on failure, for example if the
// message is malformed. The comment of each function begins with the D-Bus signature of the arguments.

/// "ai". Replaces `ids` by the ids in the message, each once, in ascending order.
int readIds(sd_bus_message* message, std::vector<App::ItemId>& ids);
/// "iias".
int readLayoutRequest(sd_bus_message* message, LayoutRequest& request);
/// "isvu". Adds one event to `events`.
int readEvent(sd_bus_message* message, PanelEvents& events);
/// "a(isvu)". Adds all events of the array to `events`.
int readEvents(sd_bus_message* message, PanelEvents& events);

int appendIds(sd_bus_message* message, const std::vector<App::ItemId>& ids);           // ai
int appendItem(sd_bus_message* message, App::ItemId id, const Properties& properties); // (ia{sv})
int appendLayout(sd_bus_message* message, const Layout& layout);                       // (ia{sv}av)
int appendUpdates(sd_bus_message* message, const std::vector<ItemUpdate>& items);      // a(ia{sv})a(ias)
/// "a(ia{sv})a(ias)". Appends `changeableProperties` of each item below `menu`, at any depth.
int appendWholeMenu(sd_bus_message* message, const App::ItemSnapshot& menu);

} // namespace Kest::StatusNotifier
