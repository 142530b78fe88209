// The real agent, host and encoders as processes that meet only in the system. Runs in a world of its own
// (private_world): the fixed paths are the real ones.
#include "tests/support/Eventually.h"
#include "tests/system/World.h"

#include <csignal>
#include <filesystem>
#include <memory>
#include <string>

namespace Kest::Test {
namespace {

namespace fs = std::filesystem;

constexpr char kLastUser[] = "/Users/Shared/.kestsettings_lastuser.txt";

using System = SimulatedStudio;

TEST_F(System, AChoiceReachesTheFileAndTheHost)
{
    startHost();
    startAgent();
    const struct {
        const char* path;
        const char* printedByHost;
        const char* key;
        const char* stored;
    } choices[] = {
        {"Solo Mode > Exclusive (XOR)", "SoloMode 1", "SoloMode", "1"},
        {"HDX Aux Track Delay > High Latency", "HdxAuxTrackDelay 2", "HdxAuxTrackDelaySetting", "2"},
        {"DAW Link Control", "DAWLinkControl 1", "DAWLinkControlSetting", "1"},
        {"Latency Compensation", "LatencyCompensationControl 0", "LatencyCompensationControlSetting", "0"},
        {"Speaker Configuration > Stereo", "PhysMonConfig 1", "PhysMonConfig", "1"},
        {"Monitoring Facility > Studio_A", "Facility Studio_A", "Facility", "Studio_A"},
    };
    for (const auto& choice : choices) {
        choose(choice.path);
        ASSERT_TRUE(host->prints(choice.printedByHost));
        EXPECT_TRUE(hasSetting(choice.key, choice.stored)) << settings();
    }
    agent->say("quit");
    EXPECT_EQ(agent->exitStatus(), 0);
    startAgent();
    for (const auto* line : {"(x) Exclusive (XOR)", "(x) Stereo", "(x) Studio_A", "(x) High Latency",
                             "[x] DAW Link Control", "[ ] Latency Compensation"})
        EXPECT_TRUE(agent->hasPrinted(line)) << line;
    tellHost("end", "host stopped");
    EXPECT_FALSE(host->hasPrinted("FOREIGN WRITE"));
}

TEST_F(System, ChoicesWithoutAHostAreKeptAndTheNextHostGetsTheNextOnes)
{
    startAgent();
    choose("Solo Mode > Exclusive (XOR)");
    ASSERT_TRUE(agent->prints("changed Solo Mode > Exclusive (XOR): on"));
    EXPECT_TRUE(hasSetting("SoloMode", "1"));

    startHost();
    choose("Solo Mode > Latch");
    ASSERT_TRUE(host->prints("SoloMode 0"));
    tellHost("start", "host started"); // anew, with new segments
    choose("Solo Mode > Exclusive (XOR)");
    ASSERT_TRUE(host->prints("SoloMode 1"));
}

TEST_F(System, AHostOf32BitsIsRefusedAndOnlyTheFileIsWritten)
{
    fs::remove(kLastUser);
    startHost("start 32");
    startAgent();
    EXPECT_TRUE(agent->hasPrinted("K3DHost running in wrong architecture (32 bits : should be 64 )"));
    choose("Solo Mode > Exclusive (XOR)");
    ASSERT_TRUE(agent->prints("changed Solo Mode > Exclusive (XOR): on"));
    EXPECT_TRUE(hasSetting("SoloMode", "1"));
    EXPECT_FALSE(fs::exists(kLastUser));
    tellHost("end", "host stopped"); // looks once more for what was written
    EXPECT_FALSE(host->hasPrinted("SoloMode"));
}

TEST_F(System, ARemovedMarkerIsLoggedAndARestartOfTheHostRecovers)
{
    startHost();
    tellHost("bus add bus-1 Dialog", "added");
    startAgent();
    ASSERT_TRUE(eventually(
        [this] { return agent->hasPrinted("added Default Bus > Dialog") || agent->hasPrinted(") Dialog"); }));
    fs::rename("/tmp/LIPC_LIPC_SESSION", "/tmp/removed"); // its inode is not used again
    ASSERT_TRUE(agent->prints("/tmp/LIPC_LIPC_SESSION was removed while its segment still exists"));
    tellHost("start", "host started");
    tellHost("bus add bus-2 Music", "added");
    ASSERT_TRUE(agent->prints("added Default Bus > Music"));
    fs::remove("/tmp/removed");
}

TEST_F(System, BusesComeAndGoInTheMenuAndOneBecomesTheDefault)
{
    startHost();
    startAgent();
    tellHost("bus add bus-1 Dialog", "added");
    ASSERT_TRUE(agent->prints("added Default Bus > Dialog"));
    tellHost("bus add bus-2 \"Ch\\x8Fur\"", "added"); // an e with a grave accent in Mac OS Roman
    ASSERT_TRUE(agent->prints("added Default Bus > Chèur"));
    choose("Default Bus > Chèur");
    ASSERT_TRUE(host->prints("(id bus-2)"));

    tellHost("bus rename bus-2 Choir", "renamed");
    ASSERT_TRUE(agent->prints("added Default Bus > Choir"));
    ASSERT_TRUE(agent->prints("changed Default Bus > Main Bus: on"));
    host->say("kill"); // and its segments stay
    EXPECT_EQ(host->exitStatus(), 128 + SIGKILL);
    startHost();
    ASSERT_TRUE(agent->prints("removed Default Bus > Dialog"));
}

TEST_F(System, AnAbortedEncodingIsGoneWithItsFolder)
{
    startAgent();
    // Of two messages at one moment only the newer one is shown, so each encoder reports again soon.
    const auto startEncoder = [](const std::string& output) {
        return std::make_unique<Process>(std::vector<std::string>{
            program("encoder-simulator"), "--output", output, "--seconds", "100", "--steps", "100"});
    };
    const std::string folder = "/tmp/out/Film";
    const auto encoder = startEncoder(folder + "/Film_Mix_Atm.wav");
    const auto other = startEncoder("/tmp/out/Other/Other.wav");
    ASSERT_TRUE(eventually([&] {
        return agent->hasPrinted("added Encoding History > Film_Mix") &&
               agent->hasPrinted("added Encoding History > Other");
    }));
    choose("Encoding History > Film_Mix > Show Output Folder");
    ASSERT_TRUE(agent->prints("output folder " + folder));
    choose("Encoding History > Film_Mix > Abort and Delete Output Folder");
    ASSERT_TRUE(agent->prints("removed Encoding History > Film_Mix"));
    EXPECT_EQ(encoder->exitStatus(), 128 + SIGKILL);
    EXPECT_FALSE(fs::exists(folder));
    EXPECT_TRUE(fs::exists("/tmp/out/Other/Other.wav"));
    EXPECT_EQ(kill(other->pid(), 0), 0);
}

// Null where the next number cannot be chosen.
std::unique_ptr<Process> startWithNumber(pid_t pid, const std::vector<std::string>& command)
{
    for (int tries = 0; tries < 20; ++tries) {
        writeFile("/proc/sys/kernel/ns_last_pid", std::to_string(pid - 1));
        auto started = std::make_unique<Process>(command);
        if (started->pid() == pid)
            return started;
    }
    return nullptr;
}

TEST_F(System, AnEncoderIsNotTakenForTheOneThatHadItsNumberBefore)
{
    startAgent();
    Process first({program("encoder-simulator"), "--output", "/tmp/out/Film/Film_Mix_Atm.wav", "--seconds",
                   "1", "--silent-at", "50"});
    ASSERT_EQ(first.exitStatus(), 0);
    ASSERT_TRUE(agent->prints("Encoding History > Film_Mix: 50%")) << "its last line";
    const auto second = startWithNumber(first.pid(), {"/bin/sh", "-c",
                                                      std::string("exec 3>") + kFifo +
                                                          "; echo \"pid: $$ , P: 10\" >&3; sleep 1; echo "
                                                          "\"pid: $$ , P: 11\" >&3; exec sleep 100"});
    if (second == nullptr)
        GTEST_SKIP() << "the next process number cannot be chosen here";
    const auto title = "Process " + std::to_string(second->pid());
    ASSERT_TRUE(agent->prints("added Encoding History > " + title + ": 10%"));
    choose("Encoding History > Film_Mix > Abort and Delete Output Folder");
    ASSERT_TRUE(agent->prints("removed Encoding History > Film_Mix"));
    EXPECT_FALSE(fs::exists("/tmp/out/Film")) << "its own folder";
    ASSERT_TRUE(agent->prints("changed Encoding History > " + title + ": 11%")) << "it still runs";
    choose("Encoding History > " + title + " > Abort and Delete Output Folder");
    ASSERT_TRUE(agent->prints("removed Encoding History > " + title));
    EXPECT_EQ(second->exitStatus(), 128 + SIGKILL);
}

TEST_F(System, EncodingsFinishFailAndFallSilent)
{
    startAgent();
    Process finishing(
        {program("encoder-simulator"), "--output", "/tmp/out/Good/Good_Film.wav", "--seconds", "1"});
    ASSERT_TRUE(agent->prints("Good_Film: 100%"));
    Process failing({program("encoder-simulator"), "--output", "/tmp/out/Bad/Bad_Film.wav", "--seconds", "1",
                     "--fail-at", "40", "--compact"});
    ASSERT_TRUE(agent->prints("changed Encoding History > Bad_Film - Failed"));
    Process silent({program("encoder-simulator"), "--output", "/tmp/out/Quiet/Quiet.wav", "--seconds", "1",
                    "--silent-at", "50"});
    EXPECT_EQ(silent.exitStatus(), 0);
    agent->say("menu");
    ASSERT_TRUE(agent->prints("Good_Film  100%"));
    ASSERT_TRUE(agent->prints("Abort and Delete Output Folder (greyed)"));
    ASSERT_TRUE(agent->prints("Bad_Film - Failed"));
    choose("Encoding History > Clear History");
    ASSERT_TRUE(agent->prints("removed Encoding History > Good_Film"));
    ASSERT_TRUE(agent->prints("changed Encoding History > Clear History: greyed"));
}

/// Its commands, the exit status, and the one line where that is not 0.
struct Script {
    const char* commands;
    int status;
    const char* line;
};

void run(const Script& script)
{
    writeFile("/tmp/script", script.commands);
    Process agent({"/bin/sh", "-c", "exec " + program("kest-settings-terminal") + " </tmp/script"});
    EXPECT_EQ(agent.exitStatus(), script.status) << script.commands;
    EXPECT_TRUE(agent.prints(script.line)) << script.commands;
}

TEST_F(System, AScriptEndsWithStatus1UnlessEachChoiceWasMade)
{
    run({"choose Solo Mode > Exclusive (XOR)", 0, "Quit Kest Settings"}); // no end of the line, no quit
    EXPECT_TRUE(hasSetting("SoloMode", "1")) << settings();
    for (const auto& failing :
         {Script{"choose Mono\nchoose Solo Mode > Latch\n", 1, "no item \"Mono\""},
          Script{"choose Encoding History > Clear History\nquit\n", 1, "is greyed"},
          Script{"choose Solo Mode\n", 1, "is a submenu"}, Script{"open Mono\n", 1, "no item \"Mono\""},
          Script{"chose Solo Mode > Exclusive (XOR)\n", 1, "unknown command"}})
        run(failing);
    EXPECT_TRUE(hasSetting("SoloMode", "0")) << "the choice behind one that fails is made\n" << settings();
    startAgent();
    Process second({program("kest-settings-terminal")}); // with a pipe
    EXPECT_TRUE(second.prints("already running"));
    EXPECT_EQ(second.exitStatus(), 1);
}

TEST_F(System, StartsOnceAndEndsInOrder)
{
    startAgent();
    EXPECT_TRUE(fs::is_fifo(kFifo));
    EXPECT_FALSE(readFile(kLastUser).empty());

    Process second({"/bin/sh", "-c", "exec " + program("kest-settings-terminal") + " </dev/null"});
    EXPECT_TRUE(second.prints("already running (process " + std::to_string(agent->pid()) + ")"));
    EXPECT_EQ(second.exitStatus(), 0);
    EXPECT_TRUE(fs::is_fifo(kFifo)) << "the second one left the first one's pipe alone";

    agent->closeInput(); // no terminal: nothing more to say, and no reason to end
    Process encoder(
        {program("encoder-simulator"), "--output", "/tmp/out/Late/Late_Film.wav", "--seconds", "1"});
    EXPECT_TRUE(agent->prints("Late_Film: 100%"));
    agent->signal(SIGTERM);
    EXPECT_EQ(agent->exitStatus(), 0);
    EXPECT_FALSE(fs::exists(kFifo));
}

} // namespace
} // namespace Kest::Test
