// The names of the host's segments and of the agent's record, and the parameter that the host writes in this
// record.
#pragma once

namespace LIPC {

constexpr char kSettingsClientName[] = "KestSettings"; // the id of the agent's record
constexpr char kVersionSegment[] = "LIPC_VERSION";
constexpr char kSessionSegment[] = "LIPC_SESSION";

/// The parameter (index in `ClientEntry::params`) with the host's status number. After creating the agent's
/// record, the host writes no other parameter of it; the agent writes the parameters that
/// `Kest::Settings::kParameterSettings` lists.
constexpr int kStatusNumberParameter = 39;

} // namespace LIPC
