#include "platform/posix/MainLoop.h"
#include "platform/posix/PosixWorkspace.h"
#include "tests/support/Captured.h"
#include "tests/support/Eventually.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <sys/resource.h>
#include <unistd.h>

namespace {

using namespace Kest;
using namespace Kest::Test;

TEST(MainLoop, EndsTheProcessAtOnceOnASecondEndingSignal)
{
    EXPECT_EXIT(
        {
            const Posix::MainLoop loop;
            raise(SIGTERM);
            raise(SIGTERM);
        },
        testing::ExitedWithCode(128 + SIGTERM), "");
}

TEST(MainLoop, ReportsSignalsAndInputUntilItIsUnwatched)
{
    Posix::MainLoop loop;
    const int input = open("/dev/null", O_RDONLY); // always readable
    int inputs = 0;
    int signals = 0;
    loop.watchInput(input, [&] {
        ++inputs;
        loop.unwatch(input);
        raise(SIGWINCH);
    });
    loop.watchSignal(SIGWINCH, [&] { ++signals == 3 ? loop.quit() : static_cast<void>(raise(SIGWINCH)); });
    EXPECT_TRUE(loop.run());
    EXPECT_EQ(inputs, 1);
    close(input);
}

TEST(MainLoop, EndsWithOneLineWhenItCannotWait)
{
    Posix::MainLoop loop;
    rlimit before{};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &before), 0);
    const rlimit none{0, before.rlim_max}; // poll takes no more descriptors than this
    captureErrors();
    setrlimit(RLIMIT_NOFILE, &none);
    EXPECT_FALSE(loop.run());
    setrlimit(RLIMIT_NOFILE, &before);
    EXPECT_EQ(capturedErrors(), "Kest Settings ends: waiting for events failed: Invalid argument\n");
}

TEST(PosixWorkspace, StartsProgramsOnTheirOwn)
{
    struct Workspace final : Posix::PosixWorkspace {
        void selectFile(const std::string&) override {}
        void showAboutPanel(const App::About&) override {}
    } workspace;
    const TemporaryFolder folder;
    EXPECT_FALSE(workspace.run(folder / "missing", {}));
    writeFile(folder / "no program", "\x7F\x45LF");
    std::filesystem::permissions(folder / "no program", std::filesystem::perms::owner_all);
    captureErrors();
    EXPECT_FALSE(workspace.run(folder / "no program", {}));
    EXPECT_NE(capturedErrors().find("no program: Exec format error"), std::string::npos);

    const Posix::JobQueue ignoresSigpipe; // the agent's dispositions and session are not the program's
    const auto script = "cd '" + folder.path().string() +
                        "'; sh -c 'kill -PIPE $$'; echo $? $$ > draft && mv draft out && exec sleep 60";
    ASSERT_TRUE(workspace.run("/bin/sh", {"-c", script}));
    ASSERT_TRUE(eventually([&] { return std::filesystem::exists(folder / "out"); }));
    int status = 0;
    pid_t pid = 0;
    std::istringstream(readFile(folder / "out")) >> status >> pid;
    EXPECT_EQ(status, 128 + SIGPIPE);
    EXPECT_EQ(getsid(pid), pid);
    kill(pid, SIGKILL);
    EXPECT_TRUE(eventually([&] { return kill(pid, 0) != 0; })) << "a zombie";
    std::signal(SIGCHLD, SIG_DFL); // for other tests of this process
}

} // namespace
