// The real agent, host and encoders as processes that meet only in the system. Runs in a world of its own
// (private_world): the fixed paths are the real ones.
#include "tests/system/SystemWorld.h"

namespace Kest::Test {
namespace {

constexpr char kLastUser[] = "/Users/Shared/.kestsettings_lastuser.txt";

class System : public SystemWorld {
protected:
    void startHost()
    {
        host = std::make_unique<Process>(
            std::vector<std::string>{program("k3dhost-simulator"), "--scenario", "-"});
        tellHost("start", "host started");
    }
    void tellHost(const std::string& command, const std::string& answer)
    {
        host->say(command);
        ASSERT_TRUE(host->prints(answer));
    }
    void startAgent()
    {
        agent = std::make_unique<Process>(std::vector<std::string>{program("kest-settings-terminal")});
        ASSERT_TRUE(agent->prints("Quit Kest Settings"));
    }
    void choose(const std::string& path) const { agent->say("choose " + path); }
    void endAgent()
    {
        agent->say("quit");
        EXPECT_EQ(agent->exitStatus(), 0);
    }

    std::unique_ptr<Process> host;
};

TEST_F(System, AChoiceReachesTheFileAndTheHost)
{
    startHost();
    startAgent();
    const struct {
        const char *path, *parameter, *key;
        int value;
    } choices[] = {
        {"Solo Mode > Exclusive (XOR)", "SoloMode ", "SoloMode", 1},
        {"HDX Aux Track Delay > High Latency", "HdxAuxTrackDelay ", "HdxAuxTrackDelaySetting", 2},
        {"DAW Link Control", "DAWLinkControl ", "DAWLinkControlSetting", 1},
        {"Speaker Configuration > Stereo", "PhysMonConfig ", "PhysMonConfig", 1},
    };
    for (const auto& choice : choices) {
        choose(choice.path);
        const auto value = std::to_string(choice.value);
        ASSERT_TRUE(host->prints(choice.parameter + value));
        expectStored(choice.key, value);
    }
    choose("Monitoring Facility > Studio_A");
    ASSERT_TRUE(host->prints("Facility Studio_A"));
    expectStored("Facility", "Studio_A");

    endAgent();
    startAgent();
    for (const auto* line : {"(x) Exclusive (XOR)", "(x) Stereo", "(x) Studio_A", "[x] DAW Link Control"})
        EXPECT_TRUE(agent->hasPrinted(line)) << line;
    tellHost("end", "host stopped");
    EXPECT_FALSE(host->hasPrinted("FOREIGN WRITE"));
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
    choose("Solo Mode > Exclusive (XOR)"); // reaches the new segments
    ASSERT_TRUE(host->prints("SoloMode 1"));
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
    choose("Encoding History > Film_Mix > Abort and Delete Output Folder");
    ASSERT_TRUE(agent->prints("removed Encoding History > Film_Mix"));
    EXPECT_EQ(encoder->exitStatus(), 128 + SIGKILL);
    EXPECT_FALSE(fs::exists(folder));
    EXPECT_TRUE(fs::exists("/tmp/out/Other/Other.wav"));
    EXPECT_EQ(kill(other->pid(), 0), 0);
}

TEST_F(System, StartsOnceAndEndsInOrder)
{
    startAgent();
    EXPECT_TRUE(fs::is_fifo(kFifo));
    EXPECT_FALSE(readFile(kLastUser).empty());

    Process second({program("kest-settings-terminal")});
    EXPECT_TRUE(second.prints("already running"));
    EXPECT_EQ(second.exitStatus(), 0);
    EXPECT_TRUE(fs::is_fifo(kFifo)) << "the second one left the first one's pipe alone";

    agent->closeInput(); // no terminal: nothing more to say, and no reason to end
    Process encoder(
        {program("encoder-simulator"), "--output", "/tmp/out/Late/Late_Film.wav", "--seconds", "1"});
    EXPECT_TRUE(agent->prints("Late_Film: 100%"));
    agent->signal(SIGTERM);
    EXPECT_EQ(agent->exitStatus(), 0);
    EXPECT_FALSE(fs::exists(kFifo));
    startAgent();
    endAgent();
}

} // namespace
} // namespace Kest::Test
