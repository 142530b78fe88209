#include "app/ItemIndex.h"

#include <algorithm>
#include <utility>

namespace Kest::App {

void ItemIndex::add(ItemId id, MenuItem& item)
{
    const auto place = std::ranges::lower_bound(entries, id, {}, &Entry::id);
    if (place == entries.end() || place->id != id)
        entries.insert(place, {id, &item});
    else if (std::exchange(place->item, &item) == nullptr)
        --removed;
}

// The gaps are closed when they are a quarter.
void ItemIndex::remove(ItemId id)
{
    const auto place = std::ranges::lower_bound(entries, id, {}, &Entry::id);
    if (place == entries.end() || place->id != id || std::exchange(place->item, nullptr) == nullptr)
        return;
    if (++removed <= entries.size() / 4)
        return;
    std::erase_if(entries, [](const Entry& entry) { return entry.item == nullptr; });
    removed = 0;
}

MenuItem* ItemIndex::find(ItemId id) const
{
    const auto place = std::ranges::lower_bound(entries, id, {}, &Entry::id);
    return place == entries.end() || place->id != id ? nullptr : place->item;
}

} // namespace Kest::App
