// The properties and the layout of menu items in com.canonical.dbusmenu, without a bus.
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
using Properties = std::map<std::string, Value>;

/// Returns UTF-8 that sd-bus accepts: with U+FFFD for each of U+FDD0..U+FDEF, U+nFFFE and U+nFFFF, and for
/// each invalid byte.
std::string busText(std::string_view text);

/// Returns a label in which underscores, the marks of mnemonics, are doubled and ASCII control characters are
/// blanks.
std::string escapedLabel(const std::string& text);

/// Returns the properties of an item for panels. Omits defaults, except the label and the state of an item
/// with a mark.
Properties itemProperties(const App::ItemSnapshot& item);

/// Returns the current value of each property that can change while the item exists, defaults included.
Properties changeableProperties(const App::ItemSnapshot& item);

/// An item with its submenu, to the depth of the snapshot.
struct Layout {
    App::ItemId id = App::kStatusMenuId;
    Properties properties;
    std::vector<Layout> children;
};

Layout layoutOf(const App::ItemSnapshot& item);

struct ItemUpdate {
    App::ItemId id;
    Properties updated;
    std::vector<std::string> removed; // back to their defaults
};

/// Returns the updates of changed items for panels; omits items without a change that panels see.
std::vector<ItemUpdate> itemUpdates(const App::MenuChanges& changes, const App::MenuModel& menu);

} // namespace Kest::StatusNotifier
