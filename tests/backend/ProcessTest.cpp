// Real processes: their identities, and which ones are ended.
#include "backend/Process.h"

#include "tests/support/Sleeper.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <chrono>
#include <fcntl.h>
#include <future>
#include <sys/stat.h>
#include <thread>

namespace {

using namespace Kest::Settings;
using Kest::Test::Sleeper;
namespace fs = std::filesystem;

TEST(ProcessIdentity, IsTheNumberAndTheStartTime)
{
    const auto now = [] {
        return std::chrono::system_clock::now().time_since_epoch() / std::chrono::nanoseconds(1);
    };
    const Kest::Test::TemporaryFolder folder;
    fs::copy_file("/bin/sleep", folder / ") R 1 (a b"); // the system writes this name in parentheses
    const auto before = now();
    Sleeper sleeper(folder / ") R 1 (a b");
    const auto identity = identifyProcess(sleeper.pid());
    EXPECT_EQ(identity.pid, sleeper.pid());
    EXPECT_EQ(identity, identifyProcess(sleeper.pid()));
    EXPECT_GE(startedAt(identity).value_or(0), before - 20'000'000);
    EXPECT_LE(startedAt(identity), now());
    sleeper.end();
    for (const int none : {sleeper.pid(), 0, -1, -sleeper.pid()})
        EXPECT_EQ(identifyProcess(none).startTime, 0U) << none;
    EXPECT_FALSE(startedAt({4711, 0}).has_value());
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
    fs::rename(folder / "pipe", folder / "old");
    ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
    EXPECT_FALSE(hasOpen(self, folder / "pipe"));
    EXPECT_TRUE(hasOpen(self, folder / "old"));
    close(pipe);
    EXPECT_FALSE(hasOpen(self, folder / "old") || hasOpen(self, folder / "none"));
}

TEST(EndProcess, EndsExactlyThisOne)
{
    const Sleeper sleeper;
    const auto identity = identifyProcess(sleeper.pid());
    for (const std::uint64_t another : {identity.startTime - 1, identity.startTime + 1, std::uint64_t{0}})
        EXPECT_EQ(endProcess({identity.pid, another}), "") << "it has ended";
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
    EXPECT_TRUE(sleeper.runs()) << "the process that has its number now";
    EXPECT_EQ(endProcess(identity), "");
    EXPECT_FALSE(sleeper.runs());
    EXPECT_EQ(endProcess(identity), "") << "once more, and nobody has waited for it";
}

TEST(EndProcess, RefusesTheAgentItsAncestorsAndItsThreads)
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
    for (const auto& task : fs::directory_iterator("/proc/self/task", none))
        if (const int number = std::stoi(task.path().filename()); number != getpid()) {
            EXPECT_EQ(identifyProcess(number).startTime, 0U);
            EXPECT_NE(endProcess(identifyProcess(number)), "");
        }
    end.set_value();
    thread.join();
}

} // namespace
