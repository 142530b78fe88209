// A short text in shared memory that a reader never sees half written.
#pragma once

#include "lipc/SharedNumber.h"
#include "text/Utf8.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace LIPC {

/// Contains `Slots` texts of at most `Length` - 1 characters and the index of the valid one. A writer fills a
/// slot that is not valid, then changes the index.
template <typename Character, std::size_t Length, std::size_t Slots>
class SHMArray {
    static_assert(sizeof(Character) == 1 && Slots == 2);

public:
    SHMArray() : slots{} {}
    /// Copies the valid text of an object that its owner may be changing, as if it were the first text put
    /// into an empty object. The rest of the slots is not initialised: copying it would dominate the cost.
    SHMArray(const SHMArray& shared);
    SHMArray& operator=(const SHMArray&) = delete;

    /// Publishes a NUL-terminated text. `length` is the caller's count of its characters: from `Length` + 1
    /// on the text is cut to `Length` - 1 bytes, as is one whose bytes do not fit. A UTF-8 character that
    /// does not fit whole is omitted. A text of exactly `Length` bytes fills its slot, and its terminator is
    /// the byte after the slot.
    void put(const Character* text, int length);

    /// Returns the valid text up to its terminator, or to the end of its slot; empty when the index is
    /// neither 0 nor 1. Points into the slot.
    std::string_view text() const;

private:
    // The run-time type in the process that created the object; meaningless in any other process.
    std::uint64_t typeWord = 0;
    Character slots[Slots * Length]; // NOLINT(modernize-use-default-member-init): not set in a snapshot
    std::int32_t current = 0;
    std::int32_t padding = 0;
};

template <typename Character, std::size_t Length, std::size_t Slots>
// NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init,hicpp-member-init): the slots, on purpose
SHMArray<Character, Length, Slots>::SHMArray(const SHMArray& shared) : current(1)
{
    const auto text = shared.text();
    slots[0] = 0;
    text.copy(slots + Length, text.size()); // none for an empty text
    if (text.size() < Length)
        slots[Length + text.size()] = 0;
}

template <typename Character, std::size_t Length, std::size_t Slots>
void SHMArray<Character, Length, Slots>::put(const Character* text, int length)
{
    // Unsigned, so that no index from another process is outside the slots.
    const auto next = (static_cast<std::uint32_t>(loadShared(current)) + 1) % Slots;
    Character* slot = slots + next * Length;

    auto bytes = strnlen(text, Length + 1);
    if ((length > static_cast<int>(Length) || bytes > Length) && bytes >= Length)
        bytes = Kest::Text::wholeCharacters({text, bytes}, Length - 1);
    std::memcpy(slot, text, bytes);
    // The byte after the last slot belongs to the index, which is stored next.
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
