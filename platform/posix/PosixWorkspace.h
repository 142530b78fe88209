// Starting programs on a system without a desktop's services.
#pragma once

#include "app/FrontEnd.h"

#include <sys/types.h>
#include <vector>

namespace Kest::Posix {

/// Main thread only. What shows something to the user is left to the front end.
class PosixWorkspace : public App::Workspace {
public:
    /// In a session of its own, so that the program outlives the agent's terminal.
    bool run(const std::string& program, const std::vector<std::string>& arguments) override;
    bool launchApplication(const std::string& path) override { return run(path, {}); }
    void runShellCommand(const std::string& command) override;

private:
    void forgetEnded();

    std::vector<pid_t> started;
};

} // namespace Kest::Posix
