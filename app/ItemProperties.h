// The properties of a menu item, and texts made from them.
#pragma once

#include "app/Action.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>

namespace Kest::App {

/// Identifies an item while it exists; an id is reused only after all others. 0 identifies the status menu;
/// an item's id also identifies its submenu.
using ItemId = std::int32_t;
constexpr ItemId kStatusMenuId = 0;

/// The kind of mark that shows that an item is on.
enum class Mark : std::uint8_t { none, check, radio };

/// The state of an encoding, which its row shows instead of the item's title.
struct EntryView {
    std::string name;
    std::optional<int> percent; // 0 or more, not clamped
    bool failed = false;
    bool operator==(const EntryView&) const = default;
    /// Returns "Film", or "Film - Failed".
    std::string title() const;
    /// Returns "42%"; empty without a percentage.
    std::string percentText() const;
};

/// All properties of an item except its id and its submenu. All text is UTF-8.
struct ItemProperties {
    std::string title{};
    Action action = Action::none;
    Mark mark = Mark::none;
    int tag = 0;
    bool on = false;
    bool enabled = true;
    bool hidden = false;
    bool red = false; // a stored choice that is no longer offered
    bool separator = false;
    std::optional<EntryView> view{};
    bool operator==(const ItemProperties&) const = default;
};

/// Immutable properties, shared between copied items, the model, its snapshots and its change records. This
/// keeps a history of thousands of encodings small.
class SharedProperties {
public:
    SharedProperties(ItemProperties properties)
        : shared(std::make_shared<const ItemProperties>(std::move(properties)))
    {}

    /// Returns a copy with one property changed.
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

/// Returns the title of the item, or of its encoding: "Process 4711" for an encoding whose title is empty.
std::string itemName(const ItemProperties& item);

/// Returns the item's text for output without colours and views: its name, with the percentage of an encoding
/// and "(not available)" for a red item.
std::string plainLabel(const ItemProperties& item);

} // namespace Kest::App
