// Starts programs with POSIX functions.
#pragma once

#include "app/FrontEnd.h"

#include <vector>

namespace Kest::Posix {

/// The standard streams of a started program. `inherited`: the agent's own streams; `none`: /dev/null. Use
/// `none` if the agent draws on the whole terminal, where other output must not appear.
enum class Streams { inherited, none };

/// Implements the start of programs. Derived classes implement the functions that show something to the user.
/// Main thread only.
class PosixWorkspace : public App::Workspace {
public:
    explicit PosixWorkspace(Streams streams = Streams::inherited) : programStreams(streams) {}

    /// Starts the program at the path `program` in a new session, so that it continues when the agent's
    /// terminal closes. Returns false if the program could not be started. In that case logs one line, unless
    /// the program is missing or is not executable. From the first call on, the process ignores SIGCHLD, so
    /// the system removes ended children, and this process cannot wait for them.
    bool run(const std::string& program, const std::vector<std::string>& arguments) override;
    bool launchApplication(const std::string& path) override { return run(path, {}); }

private:
    const Streams programStreams;
};

} // namespace Kest::Posix
