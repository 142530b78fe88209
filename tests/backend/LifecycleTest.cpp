#include "backend/HomeFolder.h"
#include "backend/Process.h"
#include "tests/backend/BackendFixture.h"
#include "tests/support/Sleeper.h"

#include <future>
#include <pwd.h>

namespace {

using namespace Kest::Settings;
using namespace Kest::Test;

using Lifecycle = BackendTest;

TEST_F(Lifecycle, CreatesItsPipeOnceAndEndsWithinASecond)
{
    system.startHost();
    captureErrors();
    for (int i = 0; i < 200; ++i) {
        start(i % 2 == 0 ? 1us : std::chrono::nanoseconds(1h)); // monitor and pipe thread begin at once
        if (i % 4 < 2)
            Encoder(fifo).write("pid: 1 , path: x\npid: 2 , P:"); // it waits within a line
        const auto begin = std::chrono::steady_clock::now();
        backend.reset();
        // Wanted is less than 100 ms; no scheduler and no sanitizer makes a second of it.
        EXPECT_LT(std::chrono::steady_clock::now() - begin, 1s) << i;
    }
    EXPECT_EQ(capturedErrors(), "");
}

TEST_F(Lifecycle, WritesTheLastUserIntoItsOwnFileThatEverybodyMayOverwrite)
{
    const auto user = system.paths.lastUserFile;
    const auto target = system.folder / "target";
    const auto errorsOf = [](const std::string& path) {
        captureErrors();
        Backend::save_username(path);
        return capturedErrors();
    };
    const auto umaskBefore = umask(077);
    writeFile(target, "kept");
    for (const auto* leftOver : {"", "somebody with a very long name\nand another line\n", ""}) {
        EXPECT_EQ(errorsOf(user), "");
        EXPECT_EQ(readFile(user), getpwuid(geteuid())->pw_name + "\n"s);
        EXPECT_EQ(fs::status(user).permissions(), fs::perms(0666));
        writeFile(user, leftOver);
    }
    fs::remove(user);
    fs::create_hard_link(target, user);
    errorsOf(user);
    fs::remove(user);
    fs::create_symlink(target, user);
    EXPECT_EQ(std::ranges::count(errorsOf(user), '\n'), 1);
    EXPECT_EQ(errorsOf(system.folder / "absent/lastuser.txt"), "");
    EXPECT_THAT(errorsOf(system.folder.path()), HasSubstr("not written: Is a directory\n"));
    umask(umaskBefore);
    EXPECT_EQ(readFile(target), "kept");
    EXPECT_EQ(fs::status(target).permissions(), fs::perms(0600));
}

TEST(HomeFolder, IsAnAbsolutePathThatCanBeUsed)
{
    const std::string own = getpwuid(getuid())->pw_dir;
    for (const auto& unusable : {"~"s, "~/x"s, "here"s, ""s, "/" + std::string(5000, 'a'), "/\xFF"s}) {
        setenv("HOME", unusable.c_str(), 1);
        EXPECT_THAT(repairHome(), HasSubstr(own + " is used")) << unusable;
        EXPECT_EQ(std::getenv("HOME"), own) << unusable;
    }
    unsetenv("HOME");
    EXPECT_EQ(repairHome(), "") << "as under a service manager";
    EXPECT_EQ(std::getenv("HOME"), own);
    setenv("HOME", "/tmp/", 1);
    EXPECT_EQ(repairHome(), "");
    EXPECT_STREQ(std::getenv("HOME"), "/tmp/");
}

TEST_F(Lifecycle, IdentifiesAProcessByItsNumberAndItsStartTime)
{
    const auto now = [] { return std::chrono::system_clock::now().time_since_epoch() / 1ns; };
    const auto program = system.folder / ") R 1 (a b"; // the system writes this name in parentheses
    fs::copy_file("/bin/sleep", program);
    const auto before = now();
    Sleeper sleeper(program);
    const auto identity = identifyProcess(sleeper.pid());
    EXPECT_TRUE(identity.pid == sleeper.pid() && identity == identifyProcess(sleeper.pid()));
    EXPECT_GE(startedAt(identity).value_or(0), before - 20'000'000);
    EXPECT_LE(startedAt(identity), now());
    sleeper.end();
    for (const int none : {sleeper.pid(), 0, -1, -sleeper.pid()})
        EXPECT_EQ(identifyProcess(none).startTime, 0U) << none;
    EXPECT_FALSE(startedAt({4711, 0}).has_value());
}

TEST_F(Lifecycle, FindsWhoHasAPipeOpenByTheFileNotItsName)
{
    const auto self = identifyProcess(getpid());
    const std::string old = system.folder / "old";
    mkfifo(fifo.c_str(), 0600);
    EXPECT_FALSE(hasOpen(self, fifo));
    const int pipe = open(fifo.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    EXPECT_TRUE(hasOpen(self, fifo));
    EXPECT_FALSE(hasOpen({self.pid, self.startTime + 1}, fifo)) << "another process's number";
    fs::rename(fifo, old);
    mkfifo(fifo.c_str(), 0600);
    EXPECT_TRUE(!hasOpen(self, fifo) && hasOpen(self, old));
    close(pipe);
    EXPECT_FALSE(hasOpen(self, old) || hasOpen(self, system.folder / "none"));
}

TEST(EndProcess, EndsExactlyThisOne)
{
    Sleeper sleeper;
    const auto identity = identifyProcess(sleeper.pid());
    for (const std::uint64_t another : {identity.startTime - 1, identity.startTime + 1, std::uint64_t{0}})
        EXPECT_EQ(endProcess({identity.pid, another}), "") << "it has ended";
    std::this_thread::sleep_for(10ms);
    EXPECT_TRUE(sleeper.checkRunning()) << "the process that has its number now";
    EXPECT_EQ(endProcess(identity), "");
    EXPECT_EQ(endProcess(identity), "") << "once more, and nobody has waited for it";
    EXPECT_FALSE(sleeper.checkRunning());
}

TEST(EndProcess, RefusesTheAgentItsAncestorsAndItsThreads)
{
    const pid_t agent = fork();
    if (agent == 0)
        _exit(endProcess(identifyProcess(getpid())).empty() ||
              endProcess(identifyProcess(getppid())).empty());
    int status = -1;
    waitpid(agent, &status, 0);
    EXPECT_EQ(status, 0);

    std::promise<void> end;
    std::thread thread([&] { end.get_future().wait(); });
    std::error_code none; // where threads have no numbers of their own
    for (const auto& task : fs::directory_iterator("/proc/self/task", none))
        if (const int number = std::stoi(task.path().filename()); number != getpid()) {
            EXPECT_NE(endProcess(identifyProcess(number)), "");
        }
    end.set_value();
    thread.join();
}

} // namespace
