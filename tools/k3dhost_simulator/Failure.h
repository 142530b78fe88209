// The result of an operation of the simulator that can fail.
#pragma once

#include <optional>
#include <string>

namespace K3DHostSimulator {

/// nullopt after success; otherwise the error, as one line without a line feed.
using Failure = std::optional<std::string>;

} // namespace K3DHostSimulator
