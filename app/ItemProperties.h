// The properties of a menu item, and texts that are made from them.
#pragma once

#include "app/Action.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>

namespace Kest::App {

/// Identifies an item of the menu, and also its submenu. 0 identifies the status menu, the top-level menu.
/// The id of a removed item is used again in two cases only. First, all ids were used once. Second, all items
/// of its menu were removed at once, and an item with the same title and action is added to this menu later.
using ItemId = std::int32_t;
constexpr ItemId kStatusMenuId = 0;

/// The kind of mark that shows whether an item is on.
enum class Mark : std::uint8_t { none, check, radio };

/// The state of an encoding. The item of an encoding shows this state instead of its title.
struct EncodingState {
    std::string name;           // may be empty
    std::optional<int> percent; // not negative; may exceed 100; nullopt if unknown
    bool failed = false;
    bool operator==(const EncodingState&) const = default;
    /// Returns the name, followed by " - Failed" if the encoding has failed.
    std::string title() const;
    /// Returns the percentage, for example "42%"; an empty text if there is none.
    std::string percentText() const;
};

/// All properties of an item except its id and its submenu. All text is UTF-8.
struct ItemProperties {
    std::string title{};
    Action action = Action::none;
    Mark mark = Mark::none;
    int tag = 0; // for an encoding, the encoder's process id; otherwise a number that the action uses
    bool on = false;
    bool enabled = true;
    bool hidden = false;
    bool red = false; // the item is the stored choice, which is not available
    bool separator = false;
    std::optional<EncodingState> encoding{};
    bool operator==(const ItemProperties&) const = default;
};

/// Immutable properties. All copies of a `SharedProperties` share one `ItemProperties`, so that the menu of
/// thousands of encodings, its snapshots and the records of its changes use little memory.
class SharedProperties {
public:
    SharedProperties(ItemProperties properties)
        : shared(std::make_shared<const ItemProperties>(std::move(properties)))
    {}

    /// Returns a copy in which one property has another value.
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

/// Returns the item's name: `EncodingState::title` for an encoding, otherwise the title. If this text is
/// empty for an encoding, returns "Process " and the process id instead, for example "Process 4711".
std::string itemName(const ItemProperties& item);

/// Returns the item's text for output without colours and progress bars: its name. For an encoding with a
/// percentage, two blanks and the percentage follow; for a red item, " (not available)" follows.
std::string plainLabel(const ItemProperties& item);

} // namespace Kest::App
