// How the Backend starts and ends.
#include "backend/AgentLock.h"
#include "backend/HomeFolder.h"
#include "log/Log.h"
#include "tests/backend/BackendFixture.h"

#include <pwd.h>

namespace {

using namespace Kest::Test;

/// Returns 0 where threads are not listed in files.
std::ptrdiff_t threadCount()
{
    std::error_code none;
    return std::distance(fs::directory_iterator("/proc/self/task", none), {});
}

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

    std::vector<std::thread> writers;
};

TEST_F(Lifecycle, EndsWithinASecondAndLeavesNoThread)
{
    place.startHost().putBus(10, "bus-1", "Dialog");
    const std::function<void()> states[] = {
        [] {},   // it has just begun
        [this] { // both threads wait, one within a line
            Encoder(fifo).write("pid: 4711 , P:");
            EXPECT_TRUE(
                eventually([this] { return busNames().size() == 2 && place.session->attachments() == 1; }));
        },
        [this] { // something else is at the pipe's path
            const Encoder encoder(fifo);
            fs::remove(fifo);
            writeFile(fifo, "another's");
        },
        [this] {
            floodWith(1);
            floodWith(2);
        },
    };
    Lct::Log(Lct::eLogWarning, "test", "starts the threads that print, which never end");
    std::thread([] {}).join(); // starts a sanitizer's own thread
    const auto threads = threadCount();
    for (const auto& state : states)
        for (int i = 0; i < 20; ++i) {
            start(1h);
            state();
            const auto begin = std::chrono::steady_clock::now();
            backend.reset();
            // Wanted is less than 100 ms; no scheduler and no sanitizer makes a second of it.
            EXPECT_LT(std::chrono::steady_clock::now() - begin, 1s) << &state - states;
            for (auto& writer : writers)
                writer.join();
            writers.clear();
            EXPECT_TRUE(eventually([&] { return threadCount() == threads; })) << &state - states;
        }
}

TEST_F(Lifecycle, WritesTheLastUserIntoAFileOfItsOwnThatEverybodyMayOverwrite)
{
    const auto user = place.paths.lastUserMarker;
    const auto target = place.folder / "target";
    const auto save = [](const std::string& path) {
        captureErrors();
        Kest::Settings::Backend::save_username(path);
        return capturedErrors();
    };
    const auto umaskBefore = umask(077);
    writeFile(target, "kept");
    for (const bool isLeftOver : {false, true}) {
        if (isLeftOver)
            writeFile(user, "somebody with a very long name\nand another line\n");
        start();
        EXPECT_EQ(readFile(user), getpwuid(geteuid())->pw_name + "\n"s);
        EXPECT_EQ(fs::status(user).permissions(), fs::perms(0666));
        fs::remove(user);
    }
    fs::create_symlink(target, user);
    EXPECT_EQ(std::ranges::count(save(user), '\n'), 1);
    fs::remove(user);
    fs::create_hard_link(target, user);
    save(user);
    fs::remove(user);
    EXPECT_EQ(save(place.folder / "absent/lastuser.txt"), "");
    fs::create_directory(user);
    EXPECT_THAT(save(user), HasSubstr("not written: Is a directory\n"));
    umask(umaskBefore);
    EXPECT_EQ(readFile(target), "kept");
    EXPECT_EQ(fs::status(target).permissions(), fs::perms(0600));
}

TEST(AgentLock, IsNotHeldByAnotherInAFolderThatCannotBeMade)
{
    const TemporaryFolder folder;
    writeFile(folder / "file", "");
    const Kest::Settings::AgentLock nowhere(folder / "file/in it");
    EXPECT_FALSE(nowhere.isHeldByAnother());
    EXPECT_EQ(nowhere.holder(), 0);
}

TEST(HomeFolder, IsAlwaysAnAbsolutePathThatCanBeUsed)
{
    const std::string before = std::getenv("HOME") == nullptr ? "/" : std::getenv("HOME");
    const std::string own = getpwuid(getuid())->pw_dir;
    for (const auto& unusable : {"~"s, "~/x"s, "here"s, ""s, "/" + std::string(5000, 'a'), "/\xFF"s}) {
        setenv("HOME", unusable.c_str(), 1);
        EXPECT_THAT(Kest::Settings::repairHome(), HasSubstr(own + " is used")) << unusable;
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
