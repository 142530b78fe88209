#include "lipc/ClientEntry.h"

namespace LIPC {

ClientEntry::ClientEntry(const ClientEntry& shared)
    : id(shared.id), type(loadShared(shared.type)), aux32(shared.aux32), auxA16(shared.auxA16),
      auxB16(shared.auxB16), strings(shared.strings)
{
    std::memcpy(label, shared.label, sizeof label);
    for (int n = 0; n < kParameters; ++n)
        params[n] = loadShared(shared.params[n]);
}

std::string_view ClientEntry::labelText() const { return {label, strnlen(label, sizeof label)}; }

} // namespace LIPC
