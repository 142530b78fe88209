// The command line of every agent program, which accepts --help and --version.
#pragma once

#include <optional>

namespace Kest::Posix {

/// Handles the arguments of an agent program. Without arguments, returns nullopt: the agent must start.
/// Otherwise returns the exit status of the program. If every argument is --help or --version, prints what
/// the first argument requests, and returns 0. The help contains the sentence `purpose`. If there is any
/// other argument, prints one line to standard error and returns 2. Opens no file. Starts no thread except
/// those that write the output. Waits up to 1 s until the output is written.
std::optional<int> answerArguments(int argc, const char* const* argv, const char* purpose);

} // namespace Kest::Posix
