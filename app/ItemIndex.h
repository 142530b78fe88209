// Which item has an id.
#pragma once

#include "app/ItemProperties.h"

#include <cstddef>
#include <vector>

namespace Kest::App {

class MenuItem;

/// Ids ascend until they are used again, so a sorted vector of them grows at its end, and takes a quarter of
/// the memory of a table. Main thread only.
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
