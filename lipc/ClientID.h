// The id of a client: a name of fixed size in the record of the client.
#pragma once

#include <cstddef>
#include <string_view>

namespace LIPC {

/// Contains a name of at most 64 one-byte characters, padded with NULs to 65 bytes, so that a name of 64
/// characters is terminated too. In shared memory, do not rely on the terminator: another process can
/// overwrite all 65 bytes.
class ClientID {
public:
    static constexpr std::size_t kCharacters = 64;

    ClientID() : ClientID("") {}
    /// Copies at most the first 64 characters of a NUL-terminated text.
    explicit ClientID(const char* name);
    ClientID(const ClientID& other) : ClientID(other.characters) {}
    ClientID& operator=(const ClientID& other);

    /// Returns the name up to its first NUL, or all 64 characters if there is no NUL among them. The result
    /// points into this object.
    std::string_view text() const;

    /// Returns whether `text()` equals `name`, which must have at most 64 characters. Inline for speed,
    /// because a search in the session compares up to 1024 ids.
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
