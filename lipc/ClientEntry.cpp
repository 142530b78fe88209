#include "lipc/ClientEntry.h"

namespace LIPC {
namespace {

template <typename Number, std::size_t Count>
std::array<Number, Count> loadAll(const std::array<Number, Count>& shared)
{
    std::array<Number, Count> numbers;
    for (std::size_t n = 0; n < Count; ++n)
        numbers[n] = loadShared(shared[n]);
    return numbers;
}

} // namespace

ClientEntry::ClientEntry(const ClientEntry& shared)
    : id(shared.id), type(loadShared(shared.type)), aux32(shared.aux32), auxA16(shared.auxA16),
      auxB16(shared.auxB16), params(loadAll(shared.params)), strings(shared.strings)
{
    std::memcpy(label, shared.label, sizeof label);
}

std::string_view ClientEntry::labelText() const { return {label, strnlen(label, sizeof label)}; }

} // namespace LIPC
