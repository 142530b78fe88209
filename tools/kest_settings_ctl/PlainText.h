// The agent's replies as lines for people.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>

namespace KestSettingsCtl {

using Json = nlohmann::ordered_json;

// Each returns whole lines. Members that are missing or of another type are left out.

/// The items of a menu, submenus indented below theirs.
std::string menuText(const Json& items);
/// "(x) Solo Mode > Latch", with the items of a submenu below.
std::string itemText(const Json& item);
/// The path of each item that can be chosen.
std::string pathsText(const Json& items);
/// "changed Default Bus > Dialog: on"
std::string eventText(const Json& event);
/// What is wrong, and the nearest path.
std::string errorText(const Json& reply);

} // namespace KestSettingsCtl
