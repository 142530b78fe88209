// What the agent prints when the settings file cannot be written: the system's own reason, the settings, one
// line.
#include "tests/support/Eventually.h"
#include "tests/system/World.h"

#include <algorithm>
#include <sys/mount.h>

namespace Kest::Test {
namespace {

namespace fs = std::filesystem;

constexpr char kPrinted[] = "/tmp/printed";

/// The settings folder is a file system of 128 KB.
class Unsaved : public World {
protected:
    void SetUp() override
    {
        World::SetUp();
        fs::create_directories(folder);
        ASSERT_EQ(mount("test", folder.c_str(), "tmpfs", 0, "size=128k"), 0);
    }
    void TearDown() override
    {
        agent.reset();
        umount2(folder.c_str(), MNT_DETACH);
    }
    void makeReadOnly() const
    {
        ASSERT_EQ(mount("test", folder.c_str(), "tmpfs", MS_REMOUNT | MS_RDONLY, "size=128k"), 0);
    }
    void fill() const
    {
        writeFile(folder / "filler", "");
        for (int page = 0; page < 64; ++page)
            std::ofstream(folder / "filler", std::ios::app) << std::string(4096, 'x');
    }
    void startAgent()
    {
        fs::remove(kPrinted);
        agent = std::make_unique<Process>(std::vector<std::string>{
            "/bin/sh", "-c", "exec '" + program("kest-settings-terminal") + "' >" + kPrinted + " 2>&-"});
        ASSERT_TRUE(
            eventually([&] { return readFile(kPrinted).find("Quit Kest Settings") != std::string::npos; }));
    }
    void chooseStereo() const { agent->say("choose Speaker Configuration > Stereo"); }
    void quit()
    {
        agent->say("quit");
        EXPECT_EQ(agent->exitStatus(), 0);
    }
    /// Log lines about unsaved settings, without their date and time.
    static std::vector<std::string> lines()
    {
        std::vector<std::string> found;
        std::ifstream printed(kPrinted);
        for (std::string line; std::getline(printed, line);)
            if (const auto begin = line.find("<ERRO> settings "); begin != std::string::npos)
                found.push_back(line.substr(begin));
        return found;
    }

    const fs::path folder = home() / "Library/Application Support/Kestronics";
    const std::string path = (folder / "Kest-Settings.xml").string();
    std::unique_ptr<Process> agent;
};

TEST_F(Unsaved, AFullDiskIsNamedWithTheChoiceAndAgainAtTheEnd)
{
    startAgent();
    fill();
    const auto whole = settings();
    chooseStereo();
    ASSERT_TRUE(eventually([] { return !lines().empty(); }));
    EXPECT_TRUE(eventually([] { // its effect is shown
        return readFile(kPrinted).find("changed Speaker Configuration > Stereo: on") != std::string::npos;
    }));
    quit();
    const std::vector<std::string> wanted = {"<ERRO> settings not saved (No space left on device): Speaker "
                                             "Configuration; in effect until the agent "
                                             "ends; " +
                                                 path,
                                             "<ERRO> settings still not saved (No space left on device): "
                                             "Speaker Configuration; lost, as the agent "
                                             "ends; " +
                                                 path};
    EXPECT_EQ(lines(), wanted);
    EXPECT_EQ(settings(), whole);
}

TEST_F(Unsaved, WhatFitsInTheEndIsSaved)
{
    startAgent();
    fill();
    chooseStereo();
    ASSERT_TRUE(eventually([] { return !lines().empty(); }));
    fs::remove(folder / "filler");
    quit();
    EXPECT_EQ(lines().size(), 1u);
    EXPECT_TRUE(hasSetting("PhysMonConfig", "1")) << settings();
}

TEST_F(Unsaved, AllThatAStartCannotSaveIsOneLine)
{
    makeReadOnly();
    startAgent();
    const auto atStart = lines();
    ASSERT_EQ(atStart.size(), 1u) << testing::PrintToString(atStart);
    EXPECT_EQ(atStart[0].find("<ERRO> settings not saved (Read-only file system): "), 0u) << atStart[0];
    for (const auto* title : {"HDX Aux Track Delay", "DAW Link Control", "Default Panner Objects",
                              "Latency Compensation", "Speaker Configuration"})
        EXPECT_NE(atStart[0].find(title), std::string::npos) << atStart[0];
    chooseStereo();
    ASSERT_TRUE(eventually([] { return lines().size() == 2; })) << "a choice has its own line";
    EXPECT_NE(lines()[1].find("): Speaker Configuration, "), std::string::npos) << lines()[1];
    quit();
    EXPECT_EQ(lines().size(), 3u);
}

} // namespace
} // namespace Kest::Test
