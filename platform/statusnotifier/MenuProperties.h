// Menu items as a desktop's panel knows them: the properties and layout of com.canonical.dbusmenu, without a
// bus.
#pragma once

#include "app/MenuDiff.h"

#include <cstdint>
#include <map>
#include <string>
#include <variant>
#include <vector>

namespace Kest::StatusNotifier {

using Value = std::variant<std::string, bool, std::int32_t>;
using Properties = std::map<std::string, Value>;

/// A label in which no character is taken for a mnemonic or a control character.
std::string escapedLabel(const std::string& text);

/// All that a panel is told of an item; what is at its default may be left out, but a label and the state of
/// an item that has one never are.
Properties itemProperties(const App::ItemSnapshot& item);

/// An item with its submenu, down to some depth.
struct Layout {
    App::ItemId id = App::kStatusMenuId;
    Properties properties;
    std::vector<Layout> children;
};

/// `depth` -1 means all; 0 the item alone.
Layout layoutOf(const App::ItemSnapshot& item, int depth);

struct ItemUpdate {
    App::ItemId id;
    Properties updated;
    std::vector<std::string> removed; // back to their defaults
};

/// What a panel that shows one moment of the menu must be told of another.
struct MenuUpdate {
    std::vector<ItemUpdate> items;
    std::vector<App::ItemId> layouts; // parents whose children have come, gone or moved
    bool isEmpty() const { return items.empty() && layouts.empty(); }
};

MenuUpdate updateBetween(const App::ItemSnapshot& shown, const App::ItemSnapshot& now);

} // namespace Kest::StatusNotifier
