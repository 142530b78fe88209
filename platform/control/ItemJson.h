// Makes the lines that clients get. Each line is one JSON object in valid UTF-8.
#pragma once

#include "app/ItemPath.h"
#include "app/MenuEvents.h"

#include <string>

namespace Kest::Control {

// Each function returns one line with its line feed. Paths must be UTF-8 without control characters.

/// Returns the first line that each client gets. It contains the agent's name, version and process id, and
/// the version of the protocol.
std::string greeting();
/// Returns the reply to the command `menu`, with all visible items at any depth.
std::string menuReply(const App::ItemSnapshot& statusMenu);
/// Returns a reply with `item` and all visible items below it. `path` is the path of `item`.
std::string itemReply(const App::ItemSnapshot& item, const std::string& path);
/// Returns a reply that reports success and contains no item.
std::string doneReply();
/// Returns a reply that reports an error. `nearest` is the path of a similar item; omitted if empty.
std::string errorReply(const std::string& error, const std::string& nearest = {});
/// Returns an event. Unless the item was removed, the line contains the properties that the item has in
/// `menu`.
std::string eventLine(const App::MenuEvent& event, const App::MenuModel& menu);

} // namespace Kest::Control
