// The lines that clients get: one JSON object each, in valid UTF-8.
#pragma once

#include "app/ItemPath.h"
#include "app/MenuEvents.h"

#include <string>

namespace Kest::Control {

// Each function returns one line with its line feed. Paths must be printable UTF-8.

/// The first line that each client gets: the agent's name, version, protocol and process id.
std::string greeting();
/// The reply to `menu`: all visible items.
std::string menuReply(const App::ItemSnapshot& statusMenu);
/// A reply with an item and the visible items of its submenu. `path` is the path of `item`.
std::string itemReply(const App::ItemSnapshot& item, const std::string& path);
/// A reply that reports success and contains no item.
std::string doneReply();
/// A reply that reports an error. `nearest` is the path of a similar item; omitted if empty.
std::string errorReply(const std::string& error, const std::string& nearest = {});
/// An event, with the item's current properties unless the item was removed.
std::string eventLine(const App::MenuEvent& event, const App::MenuModel& menu);

} // namespace Kest::Control
