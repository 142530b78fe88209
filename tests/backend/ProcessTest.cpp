// Real processes: which one has a number, and which ones are ended.
#include "backend/Process.h"

#include "tests/support/Process.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <future>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace {

using namespace Kest::Settings;
using Kest::Test::Process;

std::int64_t now()
{
    return std::chrono::duration_cast<std::chrono::nanoseconds>(
               std::chrono::system_clock::now().time_since_epoch())
        .count();
}

TEST(ProcessIdentity, IsTheNumberAndTheStartTime)
{
    const auto before = now();
    Process sleeper({"/bin/sleep", "100"});
    const auto identity = identifyProcess(sleeper.pid());
    EXPECT_EQ(identity.pid, sleeper.pid());
    EXPECT_EQ(identity, identifyProcess(sleeper.pid()));
    ASSERT_TRUE(startedAt(identity).has_value());
    EXPECT_GE(*startedAt(identity), before - 20'000'000);
    EXPECT_LE(*startedAt(identity), now());
    sleeper.signal(SIGKILL);
    sleeper.exitStatus();
    for (const int none : {sleeper.pid(), 0, -1, -sleeper.pid()})
        EXPECT_EQ(identifyProcess(none).startTime, 0U) << none;
    EXPECT_FALSE(startedAt({4711, 0}).has_value());
}

TEST(ProcessIdentity, IsReadBehindAnyProgramName)
{
    const Kest::Test::TemporaryFolder folder;
    std::filesystem::copy_file("/bin/sleep", folder / ") R 1 (a b");
    Process sleeper({folder / ") R 1 (a b", "100"});
    const auto age = now() - startedAt(identifyProcess(sleeper.pid())).value_or(0);
    EXPECT_LT(age, 60'000'000'000);
}

TEST(HasOpen, IsAboutTheFileNotItsName)
{
    const Kest::Test::TemporaryFolder folder;
    const auto self = identifyProcess(getpid());
    ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
    EXPECT_FALSE(hasOpen(self, folder / "pipe"));
    const int pipe = open((folder / "pipe").c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    EXPECT_TRUE(hasOpen(self, folder / "pipe"));
    EXPECT_FALSE(hasOpen({self.pid, self.startTime + 1}, folder / "pipe")) << "another process's number";
    std::filesystem::rename(folder / "pipe", folder / "old");
    ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
    EXPECT_FALSE(hasOpen(self, folder / "pipe"));
    EXPECT_TRUE(hasOpen(self, folder / "old"));
    close(pipe);
    EXPECT_FALSE(hasOpen(self, folder / "old") || hasOpen(self, folder / "none"));
}

TEST(EndProcess, EndsExactlyThisOne)
{
    Process program({"/bin/cat"});
    const auto identity = identifyProcess(program.pid());
    for (const std::uint64_t another : {identity.startTime - 1, identity.startTime + 1, std::uint64_t{0}})
        EXPECT_EQ(endProcess({identity.pid, another}), "") << "it has ended";
    program.say("alive");
    EXPECT_TRUE(program.prints("alive")) << "the process that has its number now";
    EXPECT_EQ(identifyProcess(program.pid()), identity);
    EXPECT_EQ(endProcess(identity), "");
    EXPECT_EQ(program.exitStatus(), 128 + SIGKILL);
    EXPECT_EQ(endProcess(identity), "") << "once more";
}

TEST(EndProcess, RefusesTheAgentItsParentAndItsThreads)
{
    const pid_t parent = fork();
    if (parent == 0) {
        const pid_t agent = fork();
        if (agent == 0)
            _exit(endProcess(identifyProcess(getpid())).empty() +
                  endProcess(identifyProcess(getppid())).empty());
        int status = -1;
        waitpid(agent, &status, 0);
        _exit(status == 0 ? 0 : 1);
    }
    int status = -1;
    waitpid(parent, &status, 0);
    EXPECT_EQ(status, 0) << "one of them was killed, or was to be";

    std::promise<void> end;
    std::thread thread([&] { end.get_future().wait(); });
    std::error_code none; // where threads have no numbers of their own
    for (const auto& task : std::filesystem::directory_iterator("/proc/self/task", none))
        if (const int number = std::stoi(task.path().filename()); number != getpid()) {
            EXPECT_EQ(identifyProcess(number).startTime, 0U);
            EXPECT_NE(endProcess(identifyProcess(number)), "");
        }
    end.set_value();
    thread.join();
}

TEST(EndProcess, TakesAProcessThatNobodyHasWaitedForAsEnded)
{
    const pid_t zombie = fork();
    if (zombie == 0)
        _exit(0);
    siginfo_t ended{};
    waitid(P_PID, static_cast<id_t>(zombie), &ended, WEXITED | WNOWAIT);
    EXPECT_EQ(endProcess(identifyProcess(zombie)), "");
    waitpid(zombie, nullptr, 0);
}

} // namespace
