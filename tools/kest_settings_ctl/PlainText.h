// Formats the agent's replies as lines of text.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>

namespace KestSettingsCtl {

using Json = nlohmann::ordered_json;

// Each returns whole lines, `errorText` a line without its line feed. Members that are missing or of another
// type are omitted.

/// Returns the items of a menu, those of submenus indented below it.
std::string menuText(const Json& items);
/// Returns "(x) Solo Mode > Latch", with the items of a submenu below.
std::string itemText(const Json& item);
/// Returns the path of each item that can be chosen.
std::string pathsText(const Json& items);
/// Returns "changed Default Bus > Dialog: on".
std::string eventText(const Json& event);
/// Returns the error and the path of the most similar item.
std::string errorText(const Json& reply);

} // namespace KestSettingsCtl
