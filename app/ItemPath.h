// Paths of menu items, for example "Speaker Configuration > Stereo".
#pragma once

#include "app/MenuSnapshot.h"

#include <string>
#include <string_view>
#include <vector>

namespace Kest::App {

constexpr std::string_view kPathSeparator = " > ";

/// Returns whether an item is neither hidden nor a separator. An item has a path only if this is true for it
/// and for all items whose submenus contain it.
inline bool isListed(const ItemProperties& item) { return !item.hidden && !item.separator; }

/// An item and its path: the names from the status menu down to the item. If a menu has several listed items
/// with the same name, their names in the path are numbered, for example "Name #1" for the topmost.
struct NamedItem {
    const ItemSnapshot* item = nullptr; // points into the searched snapshot
    std::string path;                   // printable UTF-8
};

/// Returns all items that have a path, at any depth. Each item is followed by the items of its submenu.
std::vector<NamedItem> namedItems(const ItemSnapshot& statusMenu);

struct FoundItem {
    const ItemSnapshot* item = nullptr; // points into the searched snapshot; null if not found
    std::string path{};                 // of `item`; not specified if `item` is null
    std::string error{};                // why no item was found; empty if one was found
    std::string nearest{};              // if `item` is null: the path of a similar item, or empty
};

/// Finds the item whose path equals `path`. If there is none, ignores letter case.
/// Finds no item in two cases:
/// - No item has this path in any letter case, for example because " #1" or the like is missing after a name
/// that several items have.
/// - No path is equal, and several differ from `path` only in case.
FoundItem findByPath(const ItemSnapshot& statusMenu, std::string_view path);

} // namespace Kest::App
