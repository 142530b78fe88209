// Finds an item by what is written of it: "Speaker Configuration > Stereo".
#pragma once

#include "app/MenuSnapshot.h"

#include <string>
#include <string_view>

namespace Kest::Terminal {

struct FoundItem {
    const App::ItemSnapshot* item = nullptr; // points into the menu that was searched
    std::string error;                       // what was not found and where, when `item` is null
};

/// Looks through the items that can be seen. Titles must match to the letter; of several items with one title
/// the first is meant, and "Title #2" means the second.
FoundItem findByPath(const App::ItemSnapshot& statusMenu, std::string_view path);

} // namespace Kest::Terminal
