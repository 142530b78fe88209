// Paths of menu items, for example "Speaker Configuration > Stereo".
#pragma once

#include "app/MenuSnapshot.h"

#include <string>
#include <string_view>
#include <vector>

namespace Kest::App {

constexpr std::string_view kPathSeparator = " > ";

/// Returns whether an item is neither hidden nor a separator. Does not check the items above it. An item has
/// a path only if it and all items above it are listed.
inline bool isListed(const ItemProperties& item) { return !item.hidden && !item.separator; }

/// An item and its unique path. If a menu has several listed items with the same name, their names in the
/// path are numbered from the top: "Name #1", "Name #2".
struct NamedItem {
    const ItemSnapshot* item = nullptr; // points into the searched snapshot
    std::string path;                   // printable UTF-8
};

/// Returns all items that have a path, at any depth, from top to bottom.
std::vector<NamedItem> namedItems(const ItemSnapshot& statusMenu);

struct FoundItem {
    const ItemSnapshot* item = nullptr; // points into the searched snapshot; null if not found
    std::string path{};                 // of `item`; not specified if `item` is null
    std::string error{};                // why no item was found; empty if one was found
    std::string nearest{};              // if `item` is null: the path of a similar item, or empty
};

/// Finds the item with a path. An exact match has priority. If there is no exact match, ignores letter case.
/// Finds no item in three cases:
/// - No path matches.
/// - No path matches exactly, and several match without regard to case.
/// - Several items of a menu have the same name, and the path lacks the "#N" after this name.
FoundItem findByPath(const ItemSnapshot& statusMenu, std::string_view path);

} // namespace Kest::App
