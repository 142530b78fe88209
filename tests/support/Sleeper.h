// A process that only waits, to be identified, examined and killed.
#pragma once

#include <csignal>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace Kest::Test {

class Sleeper {
public:
    explicit Sleeper(std::string program = "/bin/sleep")
    {
        char seconds[] = "100";
        char* const arguments[] = {program.data(), seconds, nullptr};
        isOurs = posix_spawn(&process, program.c_str(), nullptr, nullptr, arguments, environ) == 0;
    }
    ~Sleeper() { end(); }
    Sleeper(const Sleeper&) = delete;
    Sleeper& operator=(const Sleeper&) = delete;

    int pid() const { return process; }
    /// Returns whether the process still runs. Does not block. Reaps an ended process, whose id may be reused
    /// afterwards.
    bool checkRunning() { return isOurs = isOurs && waitpid(process, nullptr, WNOHANG) == 0; }
    void end()
    {
        if (checkRunning() && kill(process, SIGKILL) == 0)
            isOurs = waitpid(process, nullptr, 0) != process;
    }

private:
    pid_t process = 0;
    bool isOurs = false; // started, and not yet waited for
};

} // namespace Kest::Test
