// Which item has an id.
#pragma once

#include "app/ItemProperties.h"

#include <cstddef>
#include <vector>

namespace Kest::App {

class MenuItem;

/// Ids are given in ascending order, so a sorted row of them grows at its end, and is a quarter of the size
/// of a table. Main thread only.
class ItemIndex {
public:
    /// In place of what had the id before.
    void add(ItemId id, MenuItem& item);
    void remove(ItemId id);
    /// Null when there is none.
    MenuItem* find(ItemId id) const;

private:
    struct Entry {
        ItemId id = kStatusMenuId;
        MenuItem* item = nullptr; // null when it was removed
    };
    std::vector<Entry> entries;
    std::size_t removed = 0; // of `entries`
};

} // namespace Kest::App
