// How an operation of the simulator says that it failed.
#pragma once

#include <optional>
#include <string>

namespace K3DHostSimulator {

/// Empty when all is well, otherwise one clear line without a line feed.
using Failure = std::optional<std::string>;

} // namespace K3DHostSimulator
