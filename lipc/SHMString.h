// A short text in shared memory that one process can read while another process replaces it.
#pragma once

#include "lipc/SharedNumber.h"
#include "text/Utf8.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace LIPC {

/// Contains two slots, each with a text of at most `Length` bytes, and the index of the slot with the valid
/// text. `put` writes the other slot and then changes the index. So a reader in another process gets one
/// complete text, unless the writer calls `put` twice or puts exactly `Length` bytes while the reader copies:
/// the copy may then mix two texts.
template <typename Character, std::size_t Length, std::size_t Slots>
class SHMArray {
    static_assert(sizeof(Character) == 1 && Slots == 2);

public:
    SHMArray() : slots{} {}
    /// Copies the valid text of an object that another process may be changing. The copy has this text in its
    /// second slot and an empty text in its first slot. The other bytes of the slots are not initialised, for
    /// speed.
    SHMArray(const SHMArray& shared);
    SHMArray& operator=(const SHMArray&) = delete;

    /// Makes `text` the valid text. `text` must be NUL-terminated. Only one thread may call `put` at a time.
    /// Stores a text of fewer than `Length` bytes whole. Cuts a text of more than `Length` bytes to at most
    /// `Length` - 1 bytes, without splitting a UTF-8 character. Cuts a text of exactly `Length` bytes in the
    /// same way if `length` is greater than `Length`; otherwise stores it whole. `length` is the number of
    /// characters that the caller has counted; it has no other effect. `Length` stored bytes leave no room
    /// for the terminator: in the first slot, `put` writes the terminator over the first byte of the second
    /// slot; in the second slot, it writes none.
    void put(const Character* text, int length);

    /// Returns the valid text up to its terminator, at most `Length` bytes; an empty text if another process
    /// has written an invalid index. The result points into this object.
    std::string_view text() const;

private:
    // In shared memory, a pointer that is valid only in the process that created the object. This class
    // neither uses nor changes it.
    std::uint64_t typeWord = 0;
    Character slots[Slots * Length]; // NOLINT(modernize-use-default-member-init): not set in a copy
    std::int32_t current = 0;        // index of the slot with the valid text
    std::int32_t padding = 0;
};

template <typename Character, std::size_t Length, std::size_t Slots>
// NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init,hicpp-member-init): the slots are not initialised
SHMArray<Character, Length, Slots>::SHMArray(const SHMArray& shared) : current(1)
{
    const auto text = shared.text();
    slots[0] = 0;
    text.copy(slots + Length, text.size());
    if (text.size() < Length)
        slots[Length + text.size()] = 0;
}

template <typename Character, std::size_t Length, std::size_t Slots>
void SHMArray<Character, Length, Slots>::put(const Character* text, int length)
{
    // Unsigned, so that `next` is a valid index, whatever number another process has written.
    const auto next = (static_cast<std::uint32_t>(loadShared(current)) + 1) % Slots;
    Character* slot = slots + next * Length;

    auto bytes = strnlen(text, Length + 1);
    if ((length > static_cast<int>(Length) || bytes > Length) && bytes >= Length)
        bytes = Kest::Text::wholeCharacters({text, bytes}, Length - 1);
    std::memcpy(slot, text, bytes);
    // The byte after the second slot belongs to `current`, which is written next.
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
