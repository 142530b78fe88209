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
    AbortRequest request(const std::string& path)
    {
        return {.process = identifyProcess(encoder->pid()),
                .output = path,
                .pipe = root / "pipe",
                .settingsFolder = root / "settings"};
    }
    static std::string abort(const AbortRequest& request, bool agentEnds = false)
    {
        const std::atomic<bool> stop = agentEnds;
        return abortEncoder(request, stop);
    }
    static std::string refusal(const std::string& folder, const std::vector<ProtectedFolder>& rows)
    {
        return openOutputFolder(folder + "/Film.wav", rows).refusal;
    }
    static std::string remove(const OutputFolder& folder) { return removeFolder(folder, false); }

    const TemporaryFolder root;
    const std::string film = root / "out/Film";
    const std::string output = film + "/Film.wav";
    std::optional<Sleeper> encoder;
};

TEST_F(EncoderAbort, EndsAnEncoderAndDeletesItsFolderUnlessTheAgentEnds)
{
    startEncoder();
    writeFile(output, "more");
    fs::create_directory(root / "out/New"); // without a file
    const auto click = request(output);
    const auto ofNew = request(root / "out/New/New.wav");
    EXPECT_THAT(abort(click, true), HasSubstr("stopped before everything was deleted"));
    EXPECT_EQ(readFile(output), "more");
    EXPECT_FALSE(encoder->checkRunning());
    EXPECT_EQ(abort(click) + abort(ofNew), "");
    EXPECT_TRUE(fs::is_empty(root / "out"));
    EXPECT_EQ(abort(click), "") << "nothing is left to do";

    const int pipe = open((root / "pipe").c_str(), O_RDWR);
    encoder.emplace(); // inherits it
    close(pipe);
    EXPECT_EQ(abort(request("")), "");
    EXPECT_FALSE(encoder->checkRunning());
}

TEST_F(EncoderAbort, SparesWhatIsOlderThanTheEncoderOrNotItsOwn)
{
    startEncoder();
    EXPECT_THAT(abort(request(output)), HasSubstr("was not seen writing"));
    EXPECT_TRUE(encoder->checkRunning()) << "the number in a line may be anybody's";
    auto click = request(output);
    click.hadPipeOpen = true;
    for (const bool isRunning : {true, false}) {
        EXPECT_EQ(encoder->checkRunning(), isRunning);
        EXPECT_THAT(abort(click), HasSubstr("is older than"));
    }
    click.process.startTime = 0;
    EXPECT_THAT(abort(click), HasSubstr("no process had this id"));
    EXPECT_EQ(readFile(output), "master");

    writeFile(film + "/future.wav", "of a drive with a wrong clock");
    fs::last_write_time(film + "/future.wav", fs::file_time_type::clock::now() + std::chrono::hours(1));
    startEncoder();
    writeFile(root / "new", "");
    fs::create_symlink(root / "new", film + "/link.wav");
    for (const char* name : {"/link.wav", "/future.wav"})
        EXPECT_THAT(abort(request(film + name)), HasSubstr("not its own")) << name;

    writeFile(output, "");
    click = request(output);
    click.process = identifyProcess(getpid());
    click.hadPipeOpen = true;
    EXPECT_THAT(abort(click), HasSubstr("ancestors"));
    EXPECT_TRUE(fs::exists(output)) << "of a process that is not killed";
}

TEST_F(EncoderAbort, RefusesProtectedFolders)
{
    const std::string r = root.path();
    for (const char* folder : {"home/me/out/deep", "home/me/.ssh/keys", "tree/a/b", "it's"})
        fs::create_directories(root / folder);
    fs::create_directory_symlink(root / "home/me", root / "link");
    fs::create_directory_symlink(film, root / "film");
    const std::vector<ProtectedFolder> rows{{r + "/home", 1},
                                            {r + "/link", 1, true}, // a home under the name of a link
                                            {r + "/tree", ProtectedFolder::kWholeTree},
                                            {r + "/none", ProtectedFolder::kWholeTree}};
    for (const std::string folder :
         {"/.", "/home", "/home/me", "/home/me/", "/home/me/out", "/home/me/out/..", "/home/me/.ssh/keys",
          "/link", "/link/.ssh", "/link/out", "/tree", "/tree/a/b", "/it's", "/film", "/out/../tree/a"})
        EXPECT_NE(refusal(r + folder, rows), "") << folder;
    for (const std::string folder : {"/dev/shm", "relative"}) // a mount point, and no path
        EXPECT_NE(refusal(folder, rows), "") << folder;
    for (const std::string folder : {"/out/Film", "/out//Film//", "/home/me/out/deep", "/link/out/deep",
                                     "/tree/../out/Film", "/none", "/none/Film", "/out/Film/none"})
        EXPECT_EQ(refusal(r + folder, rows), "") << folder;
}

TEST_F(EncoderAbort, ProtectsTheFoldersOfTheSystemTheUserAndTheAgent)
{
    const auto rows = protectedFolders(root / "out/settings");
    fs::create_directories(root / "out/settings/inner");
    const std::string home = std::getenv("HOME");
    std::vector<std::string> folders{
        "/proc", "/dev/shm", "relative", home, home + "/Library", root / "out", root / "out/settings/inner"};
    std::error_code none;
    folders.push_back(fs::read_symlink("/proc/self/exe", none).parent_path());
    for (const std::string folder :
         {"/etc", "/usr/lib", "/tmp", "/var/tmp", "/Users", "/Library", "/opt", "/Users/Shared", "/root"})
        folders.push_back(folder);
    for (const auto& folder : folders)
        EXPECT_TRUE(!fs::exists(folder) || !refusal(folder, rows).empty()) << folder;
    EXPECT_EQ(refusal(film, rows), "");
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
        EXPECT_THAT(remove(openOutputFolder(output, {})), HasSubstr("locked: "));
        chmod((film + "/locked").c_str(), 0700);
    }
    rlimit limit{};
    getrlimit(RLIMIT_NOFILE, &limit);
    const rlimit few{100, limit.rlim_max}; // fewer than there are levels
    setrlimit(RLIMIT_NOFILE, &few);
    EXPECT_EQ(remove(openOutputFolder(output, {})), "");
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
    EXPECT_EQ(remove(opened), "");
    EXPECT_FALSE(fs::exists(root / "moved/Film"));

    fs::create_directories(root / "moved/Film/deep");
    const auto again = openOutputFolder(root / "moved/Film/Film.wav", {});
    fs::rename(root / "moved/Film", root / "moved/other");
    fs::create_directory_symlink(root / "home/Film", root / "moved/Film");
    EXPECT_THAT(remove(again), HasSubstr("replaced"));
    EXPECT_TRUE(fs::exists(root / "home/Film/kept"));
}

} // namespace
