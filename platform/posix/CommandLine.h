// The command line of every agent program: it can only be asked what it is.
#pragma once

#include <optional>

namespace Kest::Posix {

/// Prints the help after --help, and the version after --version. Prints one line to standard error after any
/// other argument. Returns the exit status, 0 or 2; nullopt when there is no argument, so that the agent
/// starts. `purpose` is one sentence for the help. Starts no thread that outlives the output, and opens no
/// file.
std::optional<int> answerArguments(int argc, const char* const* argv, const char* purpose);

} // namespace Kest::Posix
