// Finds an item by what is written of it: "Speaker Configuration > Stereo".
#pragma once

#include "app/MenuSnapshot.h"

#include <string>
#include <string_view>

namespace Kest::Terminal {

struct FoundItem {
    const App::ItemSnapshot* item = nullptr; // points into the menu that was searched
    std::string error;                       // what was not found or is ambiguous, when `item` is null
};

/// Searches the visible items. Titles must match exactly. Of several items with one title "Title #2" is the
/// second; the title alone finds none of them.
FoundItem findByPath(const App::ItemSnapshot& statusMenu, std::string_view path);

} // namespace Kest::Terminal
