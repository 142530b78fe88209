// The fixed-width name of a client in the shared session.
#pragma once

#include <cstddef>
#include <string_view>

namespace LIPC {

/// Contains 64 characters padded with NULs, and one more byte that is always 0: a name of 64 characters is
/// terminated too.
class ClientID {
public:
    static constexpr std::size_t kCharacters = 64;

    ClientID() : ClientID("") {}
    /// Copies at most 64 characters of a NUL-terminated text.
    explicit ClientID(const char* name);
    ClientID(const ClientID& other) : ClientID(other.characters) {}
    ClientID& operator=(const ClientID& other);

    /// Returns the name up to its first NUL, at most 64 characters: reading never leaves the record, whatever
    /// another process wrote into it. Valid for the life of this object.
    std::string_view text() const;

    /// Returns whether `text()` is this name of at most 64 characters. Optimised for names that differ in
    /// their first character.
    bool is(std::string_view name) const
    {
        std::size_t i = 0;
        while (i < name.size() && characters[i] == name[i])
            ++i;
        return i == name.size() && (i == kCharacters || characters[i] == '\0');
    }

private:
    char characters[kCharacters + 1] = {};
};

static_assert(sizeof(ClientID) == 65, "the session's records would move");

} // namespace LIPC
