// The bus plug-ins by name, and the session's default bus.
#include "backend/Backend.h"
#include "lipc/SessionBuffer.h"
#include "lipc/ShmManaged.h"
#include "tables/Settings.h"

#include <optional>

namespace Kest::Settings {

void Backend::getKestBusNamesList(std::vector<std::string>& names) const
{
    names.assign(1, kMainBus);
    const MutexLock lock(busMutex);
    for (const auto& [name, id] : busClients) // the map's order is the byte order
        if (name != kMainBus)
            names.push_back(name);
}

void Backend::setDefaultKestBus(const char* name)
{
    const auto idOf = [this](const char* wanted) -> std::optional<std::string> {
        const MutexLock lock(busMutex);
        const auto bus = busClients.find(wanted);
        return bus == busClients.end() ? std::nullopt : std::optional(bus->second);
    };
    const auto id = name == nullptr ? std::nullopt : idOf(name);
    if (!id)
        return;
    const LIPC::ShmManagedOpen<LIPC::SessionBuffer> session(systemPaths.sessionSegment.c_str());
    if (session.contents() != nullptr)
        session.contents()->defaultBus = LIPC::ClientID(id->c_str());
}

} // namespace Kest::Settings
