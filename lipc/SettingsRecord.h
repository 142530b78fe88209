// The names of the host's segments and of the agent's record, and the parameter that the host writes in this
// record.
#pragma once

namespace LIPC {

constexpr char kSettingsClientName[] = "KestSettings"; // the id of the agent's record
constexpr char kVersionSegment[] = "LIPC_VERSION";
constexpr char kSessionSegment[] = "LIPC_SESSION";

/// The number of the parameter that contains the host's status number. The host writes no other parameter of
/// the agent's record; the agent writes the parameters listed in `Kest::Settings::kParameterSettings`.
constexpr int kStatusNumberParameter = 39;

} // namespace LIPC
