// Starting programs on a system without a desktop's services.
#pragma once

#include "app/FrontEnd.h"

#include <vector>

namespace Kest::Posix {

/// What a started program has for input, output and errors: the agent's own, or nothing, where the agent's
/// own belong to a full screen and end with it.
enum class Streams { inherited, none };

/// Main thread only. What shows something to the user is left to the front end.
class PosixWorkspace : public App::Workspace {
public:
    explicit PosixWorkspace(Streams streams = Streams::inherited) : programStreams(streams) {}

    /// In a session of its own, so that the program outlives the agent's terminal. From the first program on
    /// the process ignores SIGCHLD: the system removes ended children, and nothing can wait for them.
    bool run(const std::string& program, const std::vector<std::string>& arguments) override;
    bool launchApplication(const std::string& path) override { return run(path, {}); }

private:
    const Streams programStreams;
};

} // namespace Kest::Posix
