// Formats the agent's replies as lines of text.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>

namespace KestSettingsCtl {

using Json = nlohmann::ordered_json;

// Each result consists of lines that end with a line feed, except that of `errorText`, which is one line
// without a line feed. Members of the JSON object that are missing or of another type are ignored.

/// Returns one line for each item of a menu. The items of a submenu follow it and are indented.
std::string menuText(const Json& items);
/// Returns one line with the item's mark, path and state, for example "(x) Solo Mode > Latch". The items of a
/// submenu follow, as in `menuText`.
std::string itemText(const Json& item);
/// Returns one line with the path of each item that can be chosen, including the items of submenus.
std::string pathsText(const Json& items);
/// Returns one line about a change of the menu, for example "changed Default Bus > Dialog: on".
std::string eventText(const Json& event);
/// Returns the error in a reply and, if the agent suggests one, the path of the most similar item.
std::string errorText(const Json& reply);

} // namespace KestSettingsCtl
