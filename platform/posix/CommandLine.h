// The command line of every agent program: --help and --version.
#pragma once

#include <optional>

namespace Kest::Posix {

/// Prints the help for --help, the version for --version, and one line to standard error for any other
/// argument. Returns the exit status, 0 or 2; nullopt without an argument, when the agent starts. `purpose`
/// is one sentence for the help. Opens no file and starts no thread except the output's.
std::optional<int> answerArguments(int argc, const char* const* argv, const char* purpose);

} // namespace Kest::Posix
