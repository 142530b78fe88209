#include "tests/support/Process.h"

#include "tests/support/Eventually.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace Kest::Test {

Process::Process(const std::vector<std::string>& command)
{
    int in[2];
    int out[2];
    if (pipe(in) != 0 || pipe(out) != 0)
        throw std::runtime_error("no pipes");
    for (const int end : {in[0], in[1], out[0], out[1]})
        fcntl(end, F_SETFD, FD_CLOEXEC);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, in[0], STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, out[1], STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, out[1], STDERR_FILENO);
    std::vector<char*> argv;
    for (const auto& word : command)
        argv.push_back(const_cast<char*>(word.c_str()));
    argv.push_back(nullptr);
    if (posix_spawn(&process, argv[0], &actions, nullptr, argv.data(), environ) != 0)
        ADD_FAILURE() << "cannot start " << command[0];
    posix_spawn_file_actions_destroy(&actions);
    close(in[0]);
    close(out[1]);
    input = in[1];
    reader = std::thread(&Process::readLines, this, out[0]);
}

Process::~Process()
{
    closeInput();
    if (process > 0 && !ended) {
        signal(SIGKILL);
        waitpid(process, nullptr, 0);
    }
    reader.join();
}

void Process::say(const std::string& line) const
{
    const auto text = line + "\n";
    EXPECT_EQ(write(input, text.data(), text.size()), static_cast<ssize_t>(text.size()));
}

void Process::closeInput()
{
    if (input >= 0)
        close(input);
    input = -1;
}

void Process::signal(int number) const { kill(process, number); }

bool Process::prints(const std::string& text)
{
    const bool found = eventually([&] {
        const std::lock_guard lock(mutex);
        while (next < lines.size())
            if (lines[next++].find(text) != std::string::npos)
                return true;
        return false;
    });
    if (!found) {
        const std::lock_guard lock(mutex);
        std::printf("no \"%s\" in what was printed:\n", text.c_str());
        for (const auto& line : lines)
            std::printf("| %s\n", line.c_str());
    }
    return found;
}

bool Process::hasPrinted(const std::string& text) const
{
    const std::lock_guard lock(mutex);
    for (const auto& line : lines)
        if (line.find(text) != std::string::npos)
            return true;
    return false;
}

int Process::exitStatus()
{
    int status = 0;
    ended = eventually([&] { return waitpid(process, &status, WNOHANG) == process; });
    if (!ended)
        return -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

// Ends when the process, and whatever it has started with the same output, has closed it.
void Process::readLines(int output)
{
    FILE* stream = fdopen(output, "r");
    char* line = nullptr;
    std::size_t capacity = 0;
    for (ssize_t length = 0; (length = getline(&line, &capacity, stream)) > 0;) {
        const std::lock_guard lock(mutex);
        lines.emplace_back(line, static_cast<std::size_t>(length) - (line[length - 1] == '\n' ? 1 : 0));
    }
    free(line);
    fclose(stream);
}

} // namespace Kest::Test
