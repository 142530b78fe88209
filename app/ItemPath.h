// Paths of menu items, for example "Speaker Configuration > Stereo".
#pragma once

#include "app/MenuSnapshot.h"

#include <string>
#include <string_view>
#include <vector>

namespace Kest::App {

constexpr std::string_view kPathSeparator = " > ";

/// Returns whether the item itself is neither hidden nor a separator. It has a path only if the items above
/// it are listed too; this function does not check those.
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
    std::string path{};                 // of `item`
    std::string error{};                // if `item` is null: why no item was found
    std::string nearest{}; // if `item` is null: the path of the most similar item; empty if none is similar
};

/// Finds the item with a path. An exact match has priority; otherwise letter case is ignored. Finds no item
/// if nothing matches, if several paths match without regard to case and none exactly, or if the path lacks
/// the
/// "#N" of a name that several items of a menu have.
FoundItem findByPath(const ItemSnapshot& statusMenu, std::string_view path);

} // namespace Kest::App
