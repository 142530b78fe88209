// The properties and the layout of menu items as com.canonical.dbusmenu defines them. Uses no bus.
#pragma once

#include "app/MenuSnapshot.h"

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace Kest::StatusNotifier {

using Value = std::variant<std::string, bool, std::int32_t>;
/// The values by property name.
using Properties = std::map<std::string, Value>;

/// Returns `text` as UTF-8 that sd-bus accepts: each noncharacter (U+FDD0 to U+FDEF, U+nFFFE, U+nFFFF) and
/// each invalid byte is replaced by U+FFFD.
std::string busText(std::string_view text);

/// Returns `busText(text)` as a label. Doubles each underscore, because a single one would mark a mnemonic.
/// Replaces each ASCII control character by a blank.
std::string escapedLabel(const std::string& text);

/// Returns the item's properties for panels, without those that have default values. Two properties are
/// included even if they have their default values: the "label" of an item that is not a separator, and the
/// "toggle-state" of an item that has "toggle-type".
Properties itemProperties(const App::ItemSnapshot& item);

/// Returns `itemProperties(item)` with two differences. "type", "toggle-type" and "children-display" are left
/// out. "enabled", "visible" and "disposition" are included even if they have default values.
Properties changeableProperties(const App::ItemSnapshot& item);

/// An item with the items of its submenu.
struct Layout {
    App::ItemId id = App::kStatusMenuId;
    Properties properties;
    std::vector<Layout> children;
};

/// Returns the layout of a snapshot with all its items, at any depth.
Layout layoutOf(const App::ItemSnapshot& item);

/// The changed properties of an item.
struct ItemUpdate {
    App::ItemId id;
    Properties updated;
    std::vector<std::string> removed; // names of properties that have their default values again
};

/// Returns one update for each item in `changes.items` whose `itemProperties` have changed. `menu` must
/// already contain the changes.
std::vector<ItemUpdate> itemUpdates(const App::MenuChanges& changes, const App::MenuModel& menu);

} // namespace Kest::StatusNotifier
