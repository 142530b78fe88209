// The bus plug-ins that are registered in the session.
#pragma once

#include <map>
#include <string>

namespace LIPC {
struct SessionBuffer;
}

namespace Kest::Settings {

using BusTable = std::map<std::string, std::string>; // display name to client id

/// The bus plug-ins of one pass.
struct BusScan {
    BusTable table;
    bool changed = false; // against the table known before
    bool operator==(const BusScan&) const = default;
};

/// Of two buses with one name the first is kept, and the second counts as a difference in every pass.
BusScan scanBuses(const LIPC::SessionBuffer& session, const BusTable& known);

} // namespace Kest::Settings
