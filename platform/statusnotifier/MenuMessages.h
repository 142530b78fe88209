// The arguments of com.canonical.dbusmenu's methods and signals, read from and appended to messages.
#pragma once

#include "platform/statusnotifier/Bus.h"

#include <set>
#include <string>
#include <utility>
#include <vector>

namespace Kest::StatusNotifier {

enum class PanelEvent { clicked, opened, closed, other };
using PanelEvents = std::vector<std::pair<App::ItemId, PanelEvent>>;

struct LayoutRequest {
    App::ItemId parent = App::kStatusMenuId;
    int depth = 0;                    // levels below the parent; -1: all
    std::set<std::string> properties; // requested by the client; empty: all
};

// Each returns sd-bus's result: a negative errno on failure, for example for a malformed message.

/// ai: stores each id once, in ascending order.
int readIds(sd_bus_message* message, std::vector<App::ItemId>& ids);
int readLayoutRequest(sd_bus_message* message, LayoutRequest& request); // iias
/// isvu: adds the event to `events`.
int readEvent(sd_bus_message* message, PanelEvents& events);
/// a(isvu)
int readEvents(sd_bus_message* message, PanelEvents& events);

int appendIds(sd_bus_message* message, const std::vector<App::ItemId>& ids);           // ai
int appendItem(sd_bus_message* message, App::ItemId id, const Properties& properties); // (ia{sv})
int appendLayout(sd_bus_message* message, const Layout& layout);                       // (ia{sv}av)
int appendUpdates(sd_bus_message* message, const std::vector<ItemUpdate>& items);      // a(ia{sv})a(ias)
/// a(ia{sv})a(ias): the changeable properties of every item of a menu, defaults included.
int appendWholeMenu(sd_bus_message* message, const App::ItemSnapshot& menu);

} // namespace Kest::StatusNotifier
