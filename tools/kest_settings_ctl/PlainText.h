// Formats the agent's replies as lines of text.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>

namespace KestSettingsCtl {

using Json = nlohmann::ordered_json;

// Each function except `errorText` returns lines that end with a line feed. A member of a JSON object that
// has an unexpected type is treated as if it were missing.

/// Returns one line for each item of a menu. The lines of a submenu's items follow the line of the submenu
/// and are indented.
std::string menuText(const Json& items);
/// Returns one line with the item's mark, path and state (such as "(greyed)"), for example "(x) Solo Mode >
/// Latch". If the item has a submenu, the lines of the submenu's items follow, as in `menuText`.
std::string itemText(const Json& item);
/// Returns the paths of all items that can be chosen, one per line, including the items of submenus.
std::string pathsText(const Json& items);
/// Returns one line about a change of the menu: the event, the item's path and what has changed, for example
/// "changed Default Bus > Dialog: on".
std::string eventText(const Json& event);
/// Returns the error in a reply, as one line without a line feed. If the reply contains the path of a similar
/// item, appends that path.
std::string errorText(const Json& reply);

} // namespace KestSettingsCtl
