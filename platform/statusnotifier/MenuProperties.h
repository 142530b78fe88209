// Menu items as a desktop's panel knows them: the properties and layout of com.canonical.dbusmenu, without a
// bus.
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

/// UTF-8 without U+FDD0..U+FDEF and U+nFFFE, U+nFFFF, which sd-bus refuses: one U+FFFD for each character or
/// byte that is none.
std::string busText(std::string_view text);

/// A label in which no character is taken for a mnemonic or a control character.
std::string escapedLabel(const std::string& text);

/// All that a panel is told of an item; what is at its default may be left out, but a label and the state of
/// an item that has one never are.
Properties itemProperties(const App::ItemSnapshot& item);

/// The current value of each property that can change while the item exists, defaults included.
Properties changeableProperties(const App::ItemSnapshot& item);

/// An item with its submenu, as deep as the snapshot is.
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

/// What a panel must be told of the items that have changed; of what it does not see, nothing.
std::vector<ItemUpdate> itemUpdates(const App::MenuChanges& changes, const App::MenuModel& menu);

} // namespace Kest::StatusNotifier
