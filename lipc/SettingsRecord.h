// The names by which the agent finds the host's segments and its own record, and the field for the host's
// message.
#pragma once

namespace LIPC {

constexpr char kSettingsClientName[] = "KestSettings";
constexpr char kVersionSegment[] = "LIPC_VERSION";
constexpr char kSessionSegment[] = "LIPC_SESSION";

/// Number of the parameter in that record that the host writes. The agent writes those of
/// `Kest::Settings::kSettings`.
constexpr int eHostMessage = 39;

} // namespace LIPC
