#include "platform/posix/PosixWorkspace.h"

#include <csignal>
#include <fcntl.h>
#include <optional>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ; // NOLINT(readability-redundant-declaration): macOS declares none

namespace Kest::Posix {
namespace {

// None of the agent's signal dispositions is the program's business.
std::optional<pid_t> spawn(const char* program, char* const* arguments, Streams streams)
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
    return failure == 0 ? std::optional(pid) : std::nullopt;
}

} // namespace

bool PosixWorkspace::run(const std::string& program, const std::vector<std::string>& arguments)
{
    forgetEnded();
    std::vector<std::string> words{program};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<char*> argv;
    argv.reserve(words.size() + 1);
    for (auto& word : words)
        argv.push_back(word.data());
    argv.push_back(nullptr);

    const auto pid = spawn(program.c_str(), argv.data(), programStreams);
    if (pid)
        started.push_back(*pid);
    return pid.has_value();
}

// Nobody waits for a program, so those that have ended are collected whenever the next one starts.
void PosixWorkspace::forgetEnded()
{
    std::erase_if(started, [](pid_t pid) { return waitpid(pid, nullptr, WNOHANG) != 0; });
}

} // namespace Kest::Posix
