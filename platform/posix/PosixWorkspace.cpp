#include "platform/posix/PosixWorkspace.h"

#include "log/Log.h"

#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <spawn.h>
#include <unistd.h>

extern char** environ; // NOLINT(readability-redundant-declaration): macOS declares none

namespace Kest::Posix {
namespace {

// Such failures are not logged: many systems have no restart command and no launch agent.
bool isNotInstalled(int failure) { return failure == ENOENT || failure == ENOTDIR || failure == EACCES; }

// Starts a program with default signal handling. Returns an errno; 0 on success.
int spawn(const char* program, char* const* arguments, Streams streams)
{
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    sigset_t none;
    sigemptyset(&none);
    sigset_t all;
    sigfillset(&all);
    posix_spawnattr_setsigmask(&attributes, &none);
    posix_spawnattr_setsigdefault(&attributes, &all);
    posix_spawnattr_setflags(&attributes,
                             POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
    posix_spawn_file_actions_t files;
    posix_spawn_file_actions_init(&files);
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        if (streams == Streams::none)
            posix_spawn_file_actions_addopen(&files, descriptor, "/dev/null", O_RDWR, 0);
    pid_t pid = 0;
    const int failure = posix_spawn(&pid, program, &files, &attributes, arguments, environ);
    posix_spawn_file_actions_destroy(&files);
    posix_spawnattr_destroy(&attributes);
    return failure;
}

} // namespace

bool PosixWorkspace::run(const std::string& program, const std::vector<std::string>& arguments)
{
    std::vector<std::string> commandLine{program};
    commandLine.insert(commandLine.end(), arguments.begin(), arguments.end());
    std::vector<char*> argv;
    argv.reserve(commandLine.size() + 1);
    for (auto& argument : commandLine)
        argv.push_back(argument.data());
    argv.push_back(nullptr);

    std::signal(SIGCHLD, SIG_IGN);
    const int failure = spawn(program.c_str(), argv.data(), programStreams);
    if (failure != 0 && !isNotInstalled(failure))
        Lct::Log(Lct::eLogWarning, "start", "%s: %s", program.c_str(), std::strerror(failure));
    return failure == 0;
}

} // namespace Kest::Posix
