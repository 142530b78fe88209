// Formats the agent's replies as lines of text.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>

namespace KestSettingsCtl {

using Json = nlohmann::ordered_json;

// Each result consists of lines that end with a line feed. Exception: `errorText` returns one line without a
// line feed. A member of a JSON object that is missing or has an unexpected type counts as its default.

/// Returns one line for each item of a menu. The lines of a submenu's items follow the line of the submenu
/// and are indented.
std::string menuText(const Json& items);
/// Returns one line with the item's mark, path and state, for example "(x) Solo Mode > Latch". If the item
/// has a submenu, the lines of the submenu's items follow, as in `menuText`.
std::string itemText(const Json& item);
/// Returns one line with the path of each item that can be chosen, including the items of submenus.
std::string pathsText(const Json& items);
/// Returns one line about a change of the menu, for example "changed Default Bus > Dialog: on".
std::string eventText(const Json& event);
/// Returns the error in a reply. If the reply contains the path of the most similar item, appends that path.
std::string errorText(const Json& reply);

} // namespace KestSettingsCtl
