// Starts programs without the services of a desktop.
#pragma once

#include "app/FrontEnd.h"

#include <vector>

namespace Kest::Posix {

/// The standard streams of a started program: the agent's own, or none if the agent's own belong to a full
/// screen and end with it.
enum class Streams { inherited, none };

/// Main thread only. Front ends implement the functions that show something to the user.
class PosixWorkspace : public App::Workspace {
public:
    explicit PosixWorkspace(Streams streams = Streams::inherited) : programStreams(streams) {}

    /// Starts the program in a new session, so that it outlives the agent's terminal. From the first call on,
    /// the process ignores SIGCHLD: the system removes ended children, and nothing can wait for them.
    bool run(const std::string& program, const std::vector<std::string>& arguments) override;
    bool launchApplication(const std::string& path) override { return run(path, {}); }

private:
    const Streams programStreams;
};

} // namespace Kest::Posix
