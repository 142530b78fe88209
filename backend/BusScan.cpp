#include "backend/BusScan.h"

#include "lipc/SessionBuffer.h"

namespace Kest::Settings {

BusScan scanBuses(const LIPC::SessionBuffer& session, const BusTable& known)
{
    std::deque<LIPC::ClientEntry> buses;
    session.getClientEntries(LIPC::kBusType, buses);

    BusScan scan;
    for (const auto& bus : buses) {
        const std::string name(bus.labelText());
        const auto id = bus.id.text();
        scan.table.emplace(name, id);
        const auto before = known.find(name);
        scan.changed = scan.changed || before == known.end() || before->second != id;
    }
    scan.changed = scan.changed || scan.table.size() != known.size();
    return scan;
}

} // namespace Kest::Settings
