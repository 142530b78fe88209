// Aborts of real processes and folders: what is ended and deleted, and what is refused.
#include "app/EncoderAbort.h"

#include "app/FolderRemoval.h"
#include "tests/support/Process.h"
#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <csignal>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <thread>
#include <unistd.h>

namespace {

using namespace Kest::App;
using Kest::Settings::identifyProcess;
using testing::HasSubstr;
namespace fs = std::filesystem;

class EncoderAbort : public testing::Test {
protected:
    EncoderAbort()
    {
        fs::create_directories(root / "out/Film");
        writeFile(root / "out/Film/Film.wav", "master");
        writeFile(root / "out/Film/future.wav", "of a drive with a wrong clock");
        fs::last_write_time(root / "out/Film/future.wav",
                            fs::file_time_type::clock::now() + std::chrono::hours(1));
        mkfifo((root / "pipe").c_str(), 0600);
    }
    // Started when all files above are older by more than the clocks' granularity.
    Kest::Test::Process& encoder()
    {
        std::this_thread::sleep_for(std::chrono::milliseconds(60));
        process = std::make_unique<Kest::Test::Process>(std::vector<std::string>{"/bin/sleep", "100"});
        return *process;
    }
    AbortOrder order(const std::string& output)
    {
        return {.process = identifyProcess(process->pid()),
                .wroteToPipe = false,
                .output = output,
                .pipe = root / "pipe",
                .settingsFolder = root / "settings"};
    }
    bool runs() const
    {
        return kill(process->pid(), 0) == 0 && identifyProcess(process->pid()).startTime != 0;
    }
    static void writeFile(const std::string& path, const std::string& text)
    {
        Kest::Test::writeFile(path, text);
    }
    static std::string removal(const std::string& folder)
    {
        return removeFolder(openOutputFolder(folder + "/x", {}), stop);
    }

    const Kest::Test::TemporaryFolder root;
    std::unique_ptr<Kest::Test::Process> process;
    static inline std::atomic<bool> stop = false;
};

TEST_F(EncoderAbort, EndsAnEncoderAndDeletesItsFolder)
{
    encoder();
    const auto output = root / "out/Film/Film.wav";
    writeFile(output, "more");
    EXPECT_EQ(abortEncoder(order(output), stop), "");
    EXPECT_EQ(process->exitStatus(), 128 + SIGKILL);
    EXPECT_FALSE(fs::exists(root / "out/Film"));
    EXPECT_TRUE(fs::exists(root / "out"));
    EXPECT_EQ(abortEncoder(order(output), stop), "") << "nothing is left to do";
}

TEST_F(EncoderAbort, DeletesAFolderThatWasCreatedByTheEncoderBeforeItsFile)
{
    encoder();
    fs::create_directory(root / "out/New");
    auto click = order(root / "out/New/New.wav");
    process->signal(SIGKILL);
    process->exitStatus();
    EXPECT_EQ(abortEncoder(click, stop), "");
    EXPECT_FALSE(fs::exists(root / "out/New"));
}

TEST_F(EncoderAbort, SparesWhatIsOlderThanTheEncoder)
{
    const auto output = root / "out/Film/Film.wav";
    encoder();
    EXPECT_THAT(abortEncoder(order(output), stop), HasSubstr("was not seen writing"));
    EXPECT_TRUE(runs()) << "the number in a line may be anybody's";

    auto click = order(output);
    click.wroteToPipe = true;
    EXPECT_THAT(abortEncoder(click, stop), HasSubstr("is older than"));
    EXPECT_EQ(process->exitStatus(), 128 + SIGKILL);
    EXPECT_THAT(abortEncoder(click, stop), HasSubstr("is older than"))
        << "a stale record of an ended process";
    click.process.startTime = 0;
    EXPECT_THAT(abortEncoder(click, stop), HasSubstr("no process had this number"));
    EXPECT_EQ(Kest::Test::readFile(output), "master");

    encoder();
    writeFile(root / "new", "");
    fs::create_symlink(root / "new", root / "out/Film/link.wav");
    for (const char* name : {"link.wav", "future.wav"})
        EXPECT_THAT(abortEncoder(order(root / "out/Film/" + name), stop), HasSubstr("not its own")) << name;
}

TEST_F(EncoderAbort, TakesAProcessForTheEncoderThatHasThePipeOpen)
{
    const int pipe = open((root / "pipe").c_str(), O_RDWR);
    Kest::Test::Process child({"/bin/sleep", "100"}); // inherits it
    close(pipe);
    AbortOrder click{identifyProcess(child.pid()), false, "", root / "pipe", root / "settings"};
    EXPECT_EQ(abortEncoder(click, stop), "");
    EXPECT_EQ(child.exitStatus(), 128 + SIGKILL);
}

TEST_F(EncoderAbort, DeletesNothingWhenTheProcessIsNotKilled)
{
    encoder();
    writeFile(root / "out/Film/Film.wav", "");
    auto click = order(root / "out/Film/Film.wav");
    click.process = identifyProcess(getpid());
    click.wroteToPipe = true;
    EXPECT_THAT(abortEncoder(click, stop), HasSubstr("ancestors"));
    EXPECT_TRUE(fs::exists(root / "out/Film/Film.wav"));
}

TEST_F(EncoderAbort, RefusesProtectedFolders)
{
    const std::string r = root.path();
    for (const char* folder :
         {"home/me/out/deep", "home/me/.ssh/keys", "home/me/Library/Logs/Film", "tree/a/b", "it's"})
        fs::create_directories(root / folder);
    fs::create_directory_symlink(root / "home/me", root / "link");
    fs::create_directory_symlink(root / "out/Film", root / "film");
    const std::vector<ProtectedFolder> rows{{r + "/home", 1},
                                            {r + "/link", 1, true}, // a home under the name of a link
                                            {r + "/home/me/Library", ProtectedFolder::kWholeTree},
                                            {r + "/tree", ProtectedFolder::kWholeTree},
                                            {r + "/none", ProtectedFolder::kWholeTree}};
    const auto opened = [&](const std::string& folder) {
        return openOutputFolder(folder + "/Film.wav", rows);
    };
    for (const char* folder : {"",
                               "/home",
                               "/home/me",
                               "/home/me/",
                               "/home/me/out",
                               "/home/me/out/..",
                               "/home/me/.",
                               "/home/me/.ssh",
                               "/home/me/.ssh/keys",
                               "/link/.ssh/keys",
                               "/home/me/Library",
                               "/home/me/Library/Logs/Film",
                               "/link",
                               "/link/out",
                               "/tree",
                               "/tree/a/b",
                               "/it's",
                               "/film",
                               "/out/../tree/a",
                               "/out/Film/Film.wav"})
        EXPECT_NE(opened(r + folder).refusal, "") << folder;
    for (const char* folder : {"/", "/proc", "/proc/self", "/dev", "/dev/shm", "relative", "../relative"})
        EXPECT_NE(openOutputFolder(std::string(folder) + "/Film.wav", {}).refusal, "") << folder;
    for (const char* folder :
         {"/out/Film", "/out//Film//", "/home/me/out/deep", "/link/out/deep", "/tree/../out/Film"})
        EXPECT_TRUE(opened(r + folder).folder && opened(r + folder).refusal.empty())
            << opened(r + folder).refusal;
    for (const char* folder : {"/none", "/none/Film", "/out/Film/none"})
        EXPECT_TRUE(!opened(r + folder).folder && opened(r + folder).refusal.empty()) << folder;
    for (const char* output : {"", "Film.wav", "/Film.wav"})
        EXPECT_TRUE(openOutputFolder(output, rows).refusal.empty()) << output;
}

TEST_F(EncoderAbort, KnowsWhatToProtectOnThisSystem)
{
    const auto rows = protectedFolders(root / "out/settings");
    fs::create_directories(root / "out/settings/inner");
    const auto home = std::string(std::getenv("HOME"));
    std::error_code none;
    for (const auto& folder : std::vector<std::string>{
             "/etc", "/usr/lib", "/tmp", "/var/tmp", "/Users", "/Library", "/Users/Shared", "/root", "/opt",
             home, home + "/Library", home + "/.ssh", home + "/.config/app", home + "/Documents",
             fs::read_symlink("/proc/self/exe", none).parent_path(), root / "out", root / "out/settings",
             root / "out/settings/inner"})
        if (fs::exists(folder)) {
            EXPECT_NE(openOutputFolder(folder + "/Film.wav", rows).refusal, "") << folder;
        }
    EXPECT_EQ(openOutputFolder(root / "out/Film/Film.wav", rows).refusal, "");
}

TEST_F(EncoderAbort, DeletesAllKindsOfEntriesAtAnyDepth)
{
    const auto film = root / "out/Film";
    fs::create_directories(root / "home/kept");
    fs::create_directory_symlink(root / "home", film + "/link");
    fs::create_symlink("nowhere", film + "/broken");
    fs::create_directories(film + "/.hidden/empty");
    writeFile(film + "/.hidden/read-only", "");
    chmod((film + "/.hidden/read-only").c_str(), 0400);
    mkfifo((film + "/fifo").c_str(), 0600);
    sockaddr_un address{.sun_family = AF_UNIX, .sun_path = {}};
    std::snprintf(address.sun_path, sizeof address.sun_path, "%s", (film + "/s").c_str());
    const int listener = socket(AF_UNIX, SOCK_STREAM, 0);
    EXPECT_EQ(bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    close(listener);
    for (int i = 0; i < 300; ++i)
        writeFile(film + "/" + std::to_string(i), "");
    for (int level = 0, folder = open(film.c_str(), O_RDONLY), next = -1; level <= 300;
         ++level, folder = next) {
        mkdirat(folder, "deep", 0700);
        mkdirat(folder, "beside", 0700);
        next = level < 300 ? openat(folder, "deep", O_RDONLY) : -1;
        close(folder);
    }
    rlimit limit{};
    getrlimit(RLIMIT_NOFILE, &limit);
    const rlimit few{100, limit.rlim_max}; // fewer than there are levels
    setrlimit(RLIMIT_NOFILE, &few);
    EXPECT_EQ(removal(film), "");
    setrlimit(RLIMIT_NOFILE, &limit);
    EXPECT_FALSE(fs::exists(film));
    EXPECT_TRUE(fs::exists(root / "home/kept"));
}

TEST_F(EncoderAbort, DeletesTheFolderThatWasCheckedAndNoOtherOneOfItsName)
{
    const auto opened = openOutputFolder(root / "out/Film/Film.wav", {});
    fs::rename(root / "out", root / "moved");
    fs::create_directories(root / "home/Film/kept");
    fs::create_directory_symlink(root / "home", root / "out");
    EXPECT_EQ(removeFolder(opened, stop), "");
    EXPECT_FALSE(fs::exists(root / "moved/Film"));

    fs::create_directories(root / "moved/Film/deep");
    const auto again = openOutputFolder(root / "moved/Film/Film.wav", {});
    fs::rename(root / "moved/Film", root / "moved/other");
    fs::create_directory_symlink(root / "home/Film", root / "moved/Film");
    EXPECT_THAT(removeFolder(again, stop), HasSubstr("exchanged"));
    EXPECT_TRUE(fs::exists(root / "home/Film/kept"));
}

TEST_F(EncoderAbort, SaysWhatIsLeft)
{
    const auto film = root / "out/Film";
    stop = true;
    EXPECT_THAT(removal(film), HasSubstr("stopped"));
    EXPECT_TRUE(fs::exists(film + "/Film.wav"));
    stop = false;
    if (geteuid() == 0)
        return; // every folder can be written
    fs::create_directories(film + "/locked/empty");
    chmod((film + "/locked").c_str(), 0500);
    EXPECT_THAT(removal(film), HasSubstr("locked: "));
    chmod((film + "/locked").c_str(), 0700);
}

TEST_F(EncoderAbort, StopsBetweenTwoFilesWhenTheAgentEnds)
{
    encoder();
    const auto output = root / "out/Film/Film.wav";
    writeFile(output, "more");
    const std::atomic<bool> agentEnds = true;
    EXPECT_THAT(abortEncoder(order(output), agentEnds), HasSubstr("stopped before everything was deleted"));
    EXPECT_EQ(Kest::Test::readFile(output), "more");
    EXPECT_EQ(process->exitStatus(), 128 + SIGKILL);
}

} // namespace
