// Items named by path: "Speaker Configuration > Stereo".
#pragma once

#include "app/MenuSnapshot.h"

#include <string>
#include <string_view>
#include <vector>

namespace Kest::App {

constexpr std::string_view kPathSeparator = " > ";

/// Whether paths can name the item: it is visible and not a separator.
inline bool isListed(const ItemProperties& item) { return !item.hidden && !item.separator; }

/// An item and its unique path. Of several items with one name in a menu the second is "Name #2".
struct NamedItem {
    const ItemSnapshot* item = nullptr; // points into the menu that was searched
    std::string path;                   // printable UTF-8
};

/// Returns all listed items, from the top down.
std::vector<NamedItem> namedItems(const ItemSnapshot& statusMenu);

struct FoundItem {
    const ItemSnapshot* item = nullptr; // points into the menu that was searched
    std::string path{};
    std::string error{};   // when `item` is null: what was not found or is ambiguous
    std::string nearest{}; // when `item` is null: the path of the most similar item, if one is similar
};

/// Finds a listed item by its path. Case matters only where two paths differ in nothing else. A name that
/// several items have matches none of them.
FoundItem findByPath(const ItemSnapshot& statusMenu, std::string_view path);

} // namespace Kest::App
