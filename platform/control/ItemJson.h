// The lines sent to clients: one JSON object each, always valid UTF-8.
#pragma once

#include "app/ItemPath.h"
#include "app/MenuEvents.h"

#include <string>

namespace Kest::Control {

// Each returns one line, including its line feed.

/// The first line of each connection.
std::string greeting();
/// A reply with the whole menu.
std::string menuReply(const App::ItemSnapshot& statusMenu);
/// A reply with an item and the items of its submenu.
std::string itemReply(const App::ItemSnapshot& item, const std::string& path);
/// A reply without an item.
std::string doneReply();
/// `nearest` is the path of a similar item; may be empty.
std::string errorReply(const std::string& error, const std::string& nearest = {});
std::string eventLine(const App::MenuEvent& event, const App::MenuModel& menu);

} // namespace Kest::Control
