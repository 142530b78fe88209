// What is seen of a menu item.
#pragma once

#include "app/Action.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>

namespace Kest::App {

/// Identifies an item while it exists; an id is used again only after all others. 0 identifies the status
/// menu, and an item's id its submenu too.
using ItemId = std::int32_t;
constexpr ItemId kStatusMenuId = 0;

/// How an item shows that it is on.
enum class Mark : std::uint8_t { none, check, radio };

/// What stands in the row of an encoding, in place of its title.
struct EntryView {
    std::string name;
    std::string percentage; // "42%", or empty
    bool operator==(const EntryView&) const = default;
};

/// Everything that is seen of an item. All text is UTF-8.
struct ItemProperties {
    std::string title;
    Action action = Action::none;
    Mark mark = Mark::none;
    int tag = 0;
    bool on = false;
    bool enabled = true;
    bool hidden = false;
    bool red = false; // a stored choice that is no longer offered
    bool separator = false;
    std::optional<EntryView> view;
    bool operator==(const ItemProperties&) const = default;
};

/// Properties that do not change any more, shared by all who hold them: by equal items, and by the model with
/// those who remember a moment of it. A history of thousands of encodings is small that way.
class SharedProperties {
public:
    SharedProperties(ItemProperties properties)
        : shared(std::make_shared<const ItemProperties>(std::move(properties)))
    {}

    /// The same but for one property.
    template <typename Property, typename Value>
    SharedProperties with(Property ItemProperties::*property, Value&& value) const
    {
        ItemProperties changed = *shared;
        changed.*property = std::forward<Value>(value);
        return changed;
    }

    const ItemProperties& operator*() const { return *shared; }
    const ItemProperties* operator->() const { return shared.get(); }
    bool operator==(const SharedProperties& other) const
    {
        return shared == other.shared || *shared == *other.shared;
    }

private:
    std::shared_ptr<const ItemProperties> shared;
};

/// The item's text where there are no colours and no views: title or entry, and "(not available)" for a red
/// one.
std::string plainLabel(const ItemProperties& item);

} // namespace Kest::App
