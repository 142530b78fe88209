#include "lipc/SessionBuffer.h"

namespace LIPC {

ClientEntry* SessionBuffer::getClientEntry(const char* name)
{
    const std::string_view wanted(name, strnlen(name, ClientID::kCharacters));
    for (auto& client : clients)
        if (client.id.is(wanted))
            return &client;
    return nullptr;
}

int SessionBuffer::getClientEntries(int type, std::deque<ClientEntry>& out) const
{
    out.clear();
    for (const auto& client : clients)
        if (loadShared(client.type) == type)
            out.emplace_back(client);
    return static_cast<int>(out.size());
}

} // namespace LIPC
