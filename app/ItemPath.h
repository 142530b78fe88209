// Paths of menu items, for example "Speaker Configuration > Stereo".
#pragma once

#include "app/MenuSnapshot.h"

#include <string>
#include <string_view>
#include <vector>

namespace Kest::App {

constexpr std::string_view kPathSeparator = " > ";

/// Returns whether the item has a path: it is visible and not a separator.
inline bool isListed(const ItemProperties& item) { return !item.hidden && !item.separator; }

/// An item and its unique path. If a menu has several items with the same name, the second is "Name #2".
struct NamedItem {
    const ItemSnapshot* item = nullptr; // points into the menu that was searched
    std::string path;                   // printable UTF-8
};

/// Returns all listed items at any depth, from top to bottom.
std::vector<NamedItem> namedItems(const ItemSnapshot& statusMenu);

struct FoundItem {
    const ItemSnapshot* item = nullptr; // points into the menu that was searched
    std::string path{};
    std::string error{};   // when `item` is null: what was not found or is ambiguous
    std::string nearest{}; // when `item` is null: the path of the most similar item, if one is similar
};

/// Finds a listed item by its path. Ignores case unless paths differ only in case. A name shared by several
/// items matches none of them.
FoundItem findByPath(const ItemSnapshot& statusMenu, std::string_view path);

} // namespace Kest::App
