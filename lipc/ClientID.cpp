#include "lipc/ClientID.h"

#include <cstring>

namespace LIPC {
namespace {

void copyName(char* to, const char* from)
{
    const auto length = strnlen(from, ClientID::kCharacters);
    std::memcpy(to, from, length);
    std::memset(to + length, 0, ClientID::kCharacters + 1 - length);
}

} // namespace

ClientID::ClientID(const char* name) { copyName(characters, name); }

ClientID& ClientID::operator=(const ClientID& other)
{
    if (this != &other)
        copyName(characters, other.characters);
    return *this;
}

std::string_view ClientID::text() const { return {characters, strnlen(characters, kCharacters)}; }

} // namespace LIPC
