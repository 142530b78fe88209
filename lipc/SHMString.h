// A short text in shared memory that a reader never meets half written.
#pragma once

#include "lipc/SharedNumber.h"
#include "text/Utf8.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace LIPC {

/// `Slots` texts of at most `Length` - 1 characters and the index of the valid one. A writer fills a slot
/// that nobody reads and then flips the index.
template <typename Character, std::size_t Length, std::size_t Slots>
class SHMArray {
    static_assert(sizeof(Character) == 1 && Slots == 2);

public:
    SHMArray() : slots{} {}
    /// A snapshot of one that its owner may be changing: its valid text, published as the first one of an
    /// empty object would be. What lies behind the texts is left as it is: copying is most of a snapshot's
    /// cost.
    SHMArray(const SHMArray& shared);
    SHMArray& operator=(const SHMArray&) = delete;

    /// Publishes a NUL-terminated text. `length` is the caller's count of its characters: from `Length` + 1
    /// on the text is cut to `Length` - 1 bytes, as is one whose bytes do not fit; of UTF-8, a character that
    /// does not fit whole is left out. A text of exactly `Length` bytes fills its slot, and its terminator
    /// falls on the byte behind the slot.
    void put(const Character* text, int length);

    /// The valid text up to its terminator, or to the end of its slot where it has none; empty when the index
    /// is neither 0 nor 1. Points into the slot.
    std::string_view text() const;

private:
    // Belongs to the run-time type of the process that made the object; means nothing to any other process.
    std::uint64_t typeWord = 0;
    Character slots[Slots * Length]; // NOLINT(modernize-use-default-member-init): a snapshot leaves them
    std::int32_t current = 0;
    std::int32_t padding = 0;
};

template <typename Character, std::size_t Length, std::size_t Slots>
// NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init,hicpp-member-init): the slots, on purpose
SHMArray<Character, Length, Slots>::SHMArray(const SHMArray& shared) : current(1)
{
    const auto text = shared.text();
    slots[0] = 0;
    text.copy(slots + Length, text.size()); // an empty one has no place
    if (text.size() < Length)
        slots[Length + text.size()] = 0;
}

template <typename Character, std::size_t Length, std::size_t Slots>
void SHMArray<Character, Length, Slots>::put(const Character* text, int length)
{
    // Unsigned, so that no index of another process leads out of the slots.
    const auto next = (static_cast<std::uint32_t>(loadShared(current)) + 1) % Slots;
    Character* slot = slots + next * Length;

    auto bytes = strnlen(text, Length + 1);
    if ((length > static_cast<int>(Length) || bytes > Length) && bytes >= Length)
        bytes = Kest::Text::wholeCharacters({text, bytes}, Length - 1);
    std::memcpy(slot, text, bytes);
    // Behind the last slot stands the index, which is stored next.
    if (next * Length + bytes < sizeof slots)
        slot[bytes] = 0;

    storeShared(current, static_cast<std::int32_t>(next));
}

template <typename Character, std::size_t Length, std::size_t Slots>
std::string_view SHMArray<Character, Length, Slots>::text() const
{
    const auto valid = static_cast<std::uint32_t>(loadShared(current));
    if (valid >= Slots)
        return {};
    const Character* slot = slots + valid * Length;
    return {slot, strnlen(slot, Length)};
}

class SHMString : public SHMArray<char, 128, 2> {};

static_assert(sizeof(SHMString) == 272, "the texts of a client record would move");

} // namespace LIPC
