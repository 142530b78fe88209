// How the Backend begins and, above all, how it ends: promptly, and without a trace.
#include "backend/AgentLock.h"
#include "backend/HomeFolder.h"
#include "log/Log.h"
#include "tests/backend/BackendFixture.h"

#include <pwd.h>

namespace {

namespace fs = std::filesystem;
using namespace Kest::Test;
using namespace std::chrono_literals;

class Lifecycle : public BackendTest {
protected:
    void floodWith(int pid)
    {
        writers.emplace_back([this, pid] {
            const Encoder encoder(fifo);
            std::string lines; // more than the pipe holds, so that it is always full
            while (lines.size() < 1000000)
                lines += "pid: " + std::to_string(pid) + " , path: /x/Film.wav\n";
            while (encoder.write(lines)) // as long as somebody reads
                ;
        });
        EXPECT_TRUE(eventually([&] { return backend->getEncodingStatus(pid).pid == pid; }));
    }

    const std::string marker = place.paths.lastUserMarker;
    std::vector<std::thread> writers;
};

TEST_F(Lifecycle, EndsAtOnceAndLeavesNoThread)
{
    place.startHost().putBus(10, "bus-1", "Dialog");
    const std::function<void()> states[] = {
        [] {},   // it has just begun
        [this] { // both threads wait, one within a line
            Encoder(fifo).write("pid: 4711 , P:");
            EXPECT_TRUE(
                eventually([this] { return busNames().size() == 2 && place.session->attachments() == 1; }));
        },
        [this] { // the pipe's place is taken
            const Encoder encoder(fifo);
            fs::remove(fifo);
            writeFile(fifo, "another's");
        },
        [this] {
            floodWith(1);
            floodWith(2);
        },
    };
    Lct::Log(Lct::eLogWarning, "test", "starts the threads that print, which live on");
    const auto threads = threadCount();
    for (const auto& state : states) {
        for (int i = 0; i < 20; ++i) {
            start(1h);
            state();
            const auto begin = std::chrono::steady_clock::now();
            backend.reset();
            // Wanted is less than 100 ms; a second is what no scheduler and no sanitizer makes of it.
            EXPECT_LT(std::chrono::steady_clock::now() - begin, 1s) << &state - states;
            for (auto& writer : writers)
                writer.join();
            writers.clear();
            EXPECT_TRUE(eventually([&] { return threadCount() == threads; })) << &state - states;
        }
    }
}

TEST_F(Lifecycle, NamesTheLastUserInAFileOfItsOwnThatEverybodyMayOverwrite)
{
    const auto target = place.folder / "target";
    const std::function<void()> others[] = {
        [] {},
        [&] { writeFile(marker, "somebody with a very long name\nand another line\n"); },
        [&] { fs::create_symlink(target, marker); },
        [&] { fs::create_hard_link(target, marker); },
    };
    const auto umaskBefore = umask(077);
    writeFile(target, "kept");
    for (const auto& putOther : others) {
        putOther();
        start();
        if (&putOther - others < 2) {
            EXPECT_EQ(readFile(marker), std::string(getpwuid(geteuid())->pw_name) + "\n");
            EXPECT_EQ(statusOf(marker).st_mode & 0777, 0666u);
        }
        EXPECT_TRUE(fs::remove(marker));
    }
    umask(umaskBefore);
    EXPECT_EQ(readFile(target), "kept");
    EXPECT_EQ(statusOf(target).st_mode & 0777, 0600u);
}

TEST_F(Lifecycle, LogsAMarkerThatCannotBeWrittenButNotAMissingFolder)
{
    const auto linesOf = [](const std::string& path) {
        Kest::Test::captureErrors();
        Kest::Settings::Backend::save_username(path);
        return Kest::Test::capturedErrors();
    };
    EXPECT_EQ(linesOf(place.folder / "absent/lastuser.txt"), "");
    fs::create_directory(marker);
    EXPECT_THAT(linesOf(marker), testing::HasSubstr("not written: Is a directory\n"));
    fs::remove(marker);
    fs::create_symlink(place.folder / "target", marker);
    EXPECT_EQ(std::ranges::count(linesOf(marker), '\n'), 1);
    fs::remove(marker);
}

TEST(AgentLock, IsHeldByOneAndNamesItsProcess)
{
    const Kest::Test::TemporaryFolder folder;
    {
        const Kest::Settings::AgentLock first(folder.path());
        const Kest::Settings::AgentLock second(folder.path());
        EXPECT_FALSE(first.isHeldByAnother());
        EXPECT_TRUE(second.isHeldByAnother());
        EXPECT_EQ(second.holder(), getpid());
    }
    const Kest::Settings::AgentLock next(folder.path());
    EXPECT_FALSE(next.isHeldByAnother());
    writeFile(folder / "file", "");
    const Kest::Settings::AgentLock nowhere(folder / "file/in it");
    EXPECT_FALSE(nowhere.isHeldByAnother()) << "a folder that cannot be made keeps no agent from running";
    EXPECT_EQ(nowhere.holder(), 0);
}

TEST(HomeFolder, IsAlwaysAnAbsolutePathThatCanBeUsed)
{
    const std::string before = std::getenv("HOME") == nullptr ? "/" : std::getenv("HOME");
    const std::string own = getpwuid(getuid())->pw_dir;
    for (const auto& unusable : {std::string("~"), std::string("~/x"), std::string("here"), std::string(),
                                 "/" + std::string(5000, 'a'), std::string("/\xFF")}) {
        setenv("HOME", unusable.c_str(), 1);
        EXPECT_THAT(Kest::Settings::repairHome(), testing::HasSubstr(own + " is used")) << unusable;
        EXPECT_EQ(std::getenv("HOME"), own) << unusable;
    }
    unsetenv("HOME");
    EXPECT_EQ(Kest::Settings::repairHome(), "") << "as under a service manager";
    EXPECT_EQ(std::getenv("HOME"), own);
    setenv("HOME", "/tmp/", 1);
    EXPECT_EQ(Kest::Settings::repairHome(), "");
    EXPECT_STREQ(std::getenv("HOME"), "/tmp/");
    setenv("HOME", before.c_str(), 1);
}

} // namespace
