// The names of the host's segments and of the agent's record, and the number of the host's message.
#pragma once

namespace LIPC {

constexpr char kSettingsClientName[] = "KestSettings";
constexpr char kVersionSegment[] = "LIPC_VERSION";
constexpr char kSessionSegment[] = "LIPC_SESSION";

/// The number of the only parameter in that record that the host writes. The agent writes those of
/// `Kest::Settings::kSettings`.
constexpr int eHostMessage = 39;

} // namespace LIPC
