// Aborts of real processes and folders: what is ended and deleted, and what is refused.
#include "app/EncoderAbort.h"

#include "app/FolderRemoval.h"
#include "tests/support/Sleeper.h"
#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <fcntl.h>
#include <optional>
#include <sys/resource.h>
#include <sys/stat.h>
#include <thread>

namespace {

using namespace Kest::App;
using namespace Kest::Test;
using Kest::Settings::identifyProcess;
using testing::HasSubstr;
namespace fs = std::filesystem;

class EncoderAbort : public testing::Test {
protected:
    EncoderAbort()
    {
        fs::create_directories(film);
        writeFile(output, "master");
        mkfifo((root / "pipe").c_str(), 0600);
    }
    // Started when all files above are older by more than the clocks' granularity.
    void startEncoder()
    {
        std::this_thread::sleep_for(std::chrono::milliseconds(60));
        encoder.emplace();
    }
    AbortRequest order(const std::string& path)
    {
        return {.process = identifyProcess(encoder->pid()),
                .wroteToPipe = false,
                .output = path,
                .pipe = root / "pipe",
                .settingsFolder = root / "settings"};
    }
    static std::string removal(const std::string& folder)
    {
        return removeFolder(openOutputFolder(folder + "/x", {}), stop);
    }

    const TemporaryFolder root;
    const std::string film = root / "out/Film";
    const std::string output = film + "/Film.wav";
    std::optional<Sleeper> encoder;
    static inline std::atomic<bool> stop = false;
};

TEST_F(EncoderAbort, EndsAnEncoderAndDeletesItsFolderUnlessTheAgentEnds)
{
    startEncoder();
    writeFile(output, "more");
    const auto click = order(output);
    const std::atomic<bool> agentEnds = true;
    EXPECT_THAT(abortEncoder(click, agentEnds), HasSubstr("stopped before everything was deleted"));
    EXPECT_EQ(readFile(output), "more");
    EXPECT_FALSE(encoder->runs());
    encoder->end();
    EXPECT_EQ(abortEncoder(click, stop), "");
    EXPECT_FALSE(fs::exists(film));
    EXPECT_TRUE(fs::exists(root / "out"));
    EXPECT_EQ(abortEncoder(click, stop), "") << "nothing is left to do";
}

TEST_F(EncoderAbort, DeletesAFolderThatWasCreatedByTheEncoderBeforeItsFile)
{
    startEncoder();
    fs::create_directory(root / "out/New");
    const auto click = order(root / "out/New/New.wav");
    encoder->end();
    EXPECT_EQ(abortEncoder(click, stop), "");
    EXPECT_FALSE(fs::exists(root / "out/New"));
}

TEST_F(EncoderAbort, SparesWhatIsOlderThanTheEncoderOrNotItsOwn)
{
    startEncoder();
    EXPECT_THAT(abortEncoder(order(output), stop), HasSubstr("was not seen writing"));
    EXPECT_TRUE(encoder->runs()) << "the number in a line may be anybody's";

    auto click = order(output);
    click.wroteToPipe = true;
    EXPECT_THAT(abortEncoder(click, stop), HasSubstr("is older than"));
    EXPECT_FALSE(encoder->runs());
    EXPECT_THAT(abortEncoder(click, stop), HasSubstr("is older than"))
        << "a stale record of an ended process";
    click.process.startTime = 0;
    EXPECT_THAT(abortEncoder(click, stop), HasSubstr("no process had this id"));
    EXPECT_EQ(readFile(output), "master");

    writeFile(film + "/future.wav", "of a drive with a wrong clock");
    fs::last_write_time(film + "/future.wav", fs::file_time_type::clock::now() + std::chrono::hours(1));
    startEncoder();
    writeFile(root / "new", "");
    fs::create_symlink(root / "new", film + "/link.wav");
    for (const char* name : {"/link.wav", "/future.wav"})
        EXPECT_THAT(abortEncoder(order(film + name), stop), HasSubstr("not its own")) << name;

    writeFile(output, "");
    click = order(output);
    click.process = identifyProcess(getpid());
    click.wroteToPipe = true;
    EXPECT_THAT(abortEncoder(click, stop), HasSubstr("ancestors"));
    EXPECT_TRUE(fs::exists(output)) << "of a process that is not killed";
}

TEST_F(EncoderAbort, TakesAProcessForTheEncoderThatHasThePipeOpen)
{
    const int pipe = open((root / "pipe").c_str(), O_RDWR);
    encoder.emplace(); // inherits it
    close(pipe);
    EXPECT_EQ(abortEncoder(order(""), stop), "");
    EXPECT_FALSE(encoder->runs());
}

TEST_F(EncoderAbort, RefusesProtectedFolders)
{
    const std::string r = root.path();
    for (const char* folder :
         {"home/me/out/deep", "home/me/.ssh/keys", "home/me/Library/Logs/Film", "tree/a/b", "it's"})
        fs::create_directories(root / folder);
    fs::create_directory_symlink(root / "home/me", root / "link");
    fs::create_directory_symlink(film, root / "film");
    const std::vector<ProtectedFolder> rows{{r + "/home", 1},
                                            {r + "/link", 1, true}, // a home under the name of a link
                                            {r + "/home/me/Library", ProtectedFolder::kWholeTree},
                                            {r + "/tree", ProtectedFolder::kWholeTree},
                                            {r + "/none", ProtectedFolder::kWholeTree}};
    const auto check = [&](const char* folders, const std::string& wanted) {
        std::istringstream names(folders);
        for (std::string folder; std::getline(names, folder, ' ');) {
            const auto opened = openOutputFolder(
                (folder.starts_with('!') ? folder.substr(1) : r + folder) + "/Film.wav", rows);
            const auto result = !opened.refusal.empty() ? "refused" : opened.folder ? "opened" : "missing";
            EXPECT_EQ(result, wanted) << folder << " " << opened.refusal;
        }
    };
    check("/home /home/me /home/me/ /home/me/out /home/me/out/.. /home/me/. /home/me/.ssh /home/me/.ssh/keys "
          "/link/.ssh/keys /home/me/Library /home/me/Library/Logs/Film /link /link/out /tree /tree/a/b /it's "
          "/film /out/../tree/a /out/Film/Film.wav !/ !/proc !/proc/self !/dev !/dev/shm !relative "
          "!../relative",
          "refused");
    EXPECT_NE(openOutputFolder(r + "/Film.wav", rows).refusal, "");
    check("/out/Film /out//Film// /home/me/out/deep /link/out/deep /tree/../out/Film", "opened");
    check("/none /none/Film /out/Film/none !", "missing");
}

TEST_F(EncoderAbort, KnowsWhatToProtectOnThisSystem)
{
    const auto rows = protectedFolders(root / "out/settings");
    fs::create_directories(root / "out/settings/inner");
    const auto home = std::string(std::getenv("HOME"));
    std::error_code none;
    for (const std::string& folder :
         {std::string("/etc"), std::string("/usr/lib"), std::string("/tmp"), std::string("/var/tmp"),
          std::string("/Users"), std::string("/Library"), std::string("/Users/Shared"), std::string("/root"),
          std::string("/opt"), home, home + "/Library", home + "/.ssh", home + "/.config/app",
          home + "/Documents", fs::read_symlink("/proc/self/exe", none).parent_path().string(), root / "out",
          root / "out/settings", root / "out/settings/inner"})
        if (fs::exists(folder)) {
            EXPECT_NE(openOutputFolder(folder + "/Film.wav", rows).refusal, "") << folder;
        }
    EXPECT_EQ(openOutputFolder(output, rows).refusal, "");
}

TEST_F(EncoderAbort, DeletesAllKindsOfEntriesAtAnyDepthAndNamesWhatIsLeft)
{
    fs::create_directories(root / "home/kept");
    fs::create_directory_symlink(root / "home", film + "/link");
    fs::create_symlink("nowhere", film + "/broken");
    fs::create_directories(film + "/.hidden/empty");
    writeFile(film + "/.hidden/read-only", "");
    chmod((film + "/.hidden/read-only").c_str(), 0400);
    mkfifo((film + "/fifo").c_str(), 0600);
    for (int i = 0; i < 300; ++i)
        writeFile(film + "/" + std::to_string(i), "");
    for (int level = 0, folder = open(film.c_str(), O_RDONLY), next = -1; level <= 300;
         ++level, folder = next) {
        mkdirat(folder, "deep", 0700);
        mkdirat(folder, "beside", 0700);
        next = level < 300 ? openat(folder, "deep", O_RDONLY) : -1;
        close(folder);
    }
    if (geteuid() != 0) { // who may write every folder
        fs::create_directories(film + "/locked/empty");
        chmod((film + "/locked").c_str(), 0500);
        EXPECT_THAT(removal(film), HasSubstr("locked: "));
        chmod((film + "/locked").c_str(), 0700);
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
    const auto opened = openOutputFolder(output, {});
    fs::rename(root / "out", root / "moved");
    fs::create_directories(root / "home/Film/kept");
    fs::create_directory_symlink(root / "home", root / "out");
    EXPECT_EQ(removeFolder(opened, stop), "");
    EXPECT_FALSE(fs::exists(root / "moved/Film"));

    fs::create_directories(root / "moved/Film/deep");
    const auto again = openOutputFolder(root / "moved/Film/Film.wav", {});
    fs::rename(root / "moved/Film", root / "moved/other");
    fs::create_directory_symlink(root / "home/Film", root / "moved/Film");
    EXPECT_THAT(removeFolder(again, stop), HasSubstr("replaced"));
    EXPECT_TRUE(fs::exists(root / "home/Film/kept"));
}

} // namespace
