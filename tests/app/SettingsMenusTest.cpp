// The stored choices in the menu, and each choice's way into the settings file and the host's bytes.
#include "tests/app/Agent.h"

namespace {

using namespace Kest::App;
using Kest::Test::Agent;
using testing::ElementsAre;
using Settings = std::map<std::string, std::string>;

constexpr std::size_t kRecord = 1120 + 3376 * 3; // the agent's, in slot 3
constexpr std::size_t kFacility = kRecord + 656;
constexpr std::size_t kParameters[] = {160, 272, 276, 292, 304, 308};
constexpr float kUntouched = -5;

void startWithHost(Agent& agent)
{
    agent.place.startHost();
    for (const auto offset : kParameters)
        agent.place.session->putFloat(kRecord + offset, kUntouched);
    agent.start();
}

TEST(StartUp, ShowsTheStoredSoloModeAndDoesNotWriteItBack)
{
    for (const std::string mode : {"absent", "0", "1", "2"}) {
        Agent agent(mode == "absent" ? Settings() : Settings{{"SoloMode", mode}});
        startWithHost(agent);
        EXPECT_EQ(agent.seen("Solo Mode/Latch").on, mode == "absent" || mode == "0") << mode;
        EXPECT_EQ(agent.seen("Solo Mode/Exclusive (XOR)").on, mode == "1") << mode;
        EXPECT_EQ(agent.stored("SoloMode"), mode);
        EXPECT_EQ(agent.place.session->floatAt(kRecord + 160), kUntouched);
    }
}

TEST(StartUp, WritesTheOtherChoicesBackAsItShowsThem)
{
    constexpr const char* kKeys[] = {"HdxAuxTrackDelaySetting", "DAWLinkControlSetting",
                                     "defaultPannerObjects", "LatencyCompensationControlSetting",
                                     "PhysMonConfig"};
    struct Case {
        Settings settings;
        const char *hdx, *speakers;
        std::vector<std::string> values; // under the keys above
    };
    const Settings others = {
        {kKeys[0], "2"}, {kKeys[1], "1"}, {kKeys[2], "1"}, {kKeys[3], "0"}, {kKeys[4], "11"}};
    for (const auto& [settings, hdx, speakers, values] : {
             Case{{}, "Off", "KestMax 26.1", {"0", "0", "0", "1", "26"}},
             Case{others, "High Latency", "Surround 7.1", {"2", "1", "1", "0", "11"}},
             Case{{{kKeys[0], "7"}}, "Off", "KestMax 26.1", {"0", "0", "0", "1", "26"}}, // offered no more
             Case{{{kKeys[4], "23"}}, "Off", "none", {"0", "0", "0", "1", "23"}}, // of no configuration
         }) {
        Agent agent(settings);
        startWithHost(agent);
        for (const char* menu : {"HDX Aux Track Delay", "Speaker Configuration"})
            for (const auto& item : agent.at(menu).submenu()->itemArray())
                EXPECT_EQ(item->properties().on, item->title() == hdx || item->title() == speakers)
                    << item->title();
        EXPECT_EQ(agent.seen("DAW Link Control").on, values[1] == "1");
        EXPECT_EQ(agent.seen("Latency Compensation").hidden, values[1] == "0");
        EXPECT_EQ(agent.seen("Default Panner Objects").on, values[2] == "1");
        EXPECT_EQ(agent.seen("Latency Compensation").on, values[3] == "1");
        for (std::size_t i = 0; i < values.size(); ++i) {
            EXPECT_EQ(agent.stored(kKeys[i]), values[i]) << kKeys[i];
            EXPECT_EQ(agent.place.session->floatAt(kRecord + kParameters[i + 1]),
                      values[i] == "23" ? kUntouched : std::stof(values[i]))
                << kKeys[i];
        }
        EXPECT_EQ(agent.stored("Facility"), "absent");
        EXPECT_EQ(agent.place.session->intAt(kFacility + 264), 0);
        EXPECT_THAT(agent.items("Speaker Configuration"), testing::SizeIs(12));
    }
}

TEST(Choices, ReachTheMenuTheFileAndTheHost)
{
    struct Case {
        const char *menu, *item, *key;
        int value;
        std::size_t offset;
    };
    Agent agent;
    startWithHost(agent);
    for (const auto& [menu, item, key, value, offset] : {
             Case{"Solo Mode/", "Exclusive (XOR)", "SoloMode", 1, 160},
             Case{"Solo Mode/", "Latch", "SoloMode", 0, 160},
             Case{"HDX Aux Track Delay/", "High Latency", "HdxAuxTrackDelaySetting", 2, 272},
             Case{"Speaker Configuration/", "Kest 9.1", "PhysMonConfig", 14, 308},
             Case{"", "DAW Link Control", "DAWLinkControlSetting", 1, 276},
             Case{"", "Latency Compensation", "LatencyCompensationControlSetting", 0, 304}, // shown by now
             Case{"", "DAW Link Control", "DAWLinkControlSetting", 0, 276},
         }) {
        for (const auto other : kParameters)
            agent.place.session->putFloat(kRecord + other, kUntouched);
        const auto path = std::string(menu) + item;
        EXPECT_TRUE(agent.choose(path)) << path;
        const auto& chosen = agent.at(path);
        EXPECT_EQ(chosen.properties().on, *menu != '\0' || value != 0) << path;
        for (const auto& other : chosen.menu()->itemArray())
            EXPECT_FALSE(*menu != '\0' && other.get() != &chosen && other->properties().on) << other->title();
        EXPECT_EQ(agent.stored(key), std::to_string(value)) << path;
        for (const auto other : kParameters)
            EXPECT_EQ(agent.place.session->floatAt(kRecord + other),
                      other == offset ? static_cast<float>(value) : kUntouched)
                << path;
        EXPECT_EQ(agent.seen("Latency Compensation").hidden, agent.stored("DAWLinkControlSetting") == "0")
            << path;
    }
    EXPECT_EQ(agent.place.session->textAt(3458152), "") << "none is about the default bus";
}

TEST(Choices, AreRefusedForWhatIsNotOffered)
{
    Agent agent;
    agent.start();
    for (const char* path : {"Facility", "Second Monitoring Facility", "DAW Type", "Default Panner Objects"})
        EXPECT_TRUE(agent.seen(path).hidden) << path;
    for (const char* path : {"Default Panner Objects", "Latency Compensation",
                             "Encoding History/Clear History", "Facility", "Solo Mode"})
        EXPECT_FALSE(agent.choose(path)) << path;
    EXPECT_EQ(agent.stored("defaultPannerObjects"), "0");
    EXPECT_EQ(agent.stored("LatencyCompensationControlSetting"), "1");
    const auto snapshot = takeSnapshot(agent.delegate.menu());
    for (ItemId id = -1; id < 200; ++id) {
        const auto* item = findItem(snapshot, id);
        if (item == nullptr || item->properties.separator) {
            EXPECT_FALSE(agent.delegate.choose(id)) << "a template's, a separator or none: " << id;
        }
    }
    EXPECT_THAT(agent.workspace.asked, ElementsAre());
}

TEST(Choices, AreToldToTheFrontEndOnceAndOnlyWhenTheyChangeSomething)
{
    Agent agent;
    agent.delegate.awakeFromNib();
    EXPECT_EQ(agent.frontEnd.changes, 1);
    agent.choose("Solo Mode/Exclusive (XOR)"); // two items change
    EXPECT_EQ(agent.frontEnd.changes, 2);
    agent.choose("Solo Mode/Exclusive (XOR)");
    agent.choose("Facility");
    agent.open("Solo Mode");
    EXPECT_EQ(agent.frontEnd.changes, 2);
}

TEST(FacilityMenu, ShowsAStaleChoiceInRedWhereItWouldSort)
{
    struct Case {
        std::vector<std::string> installed;
        std::string current;
        std::vector<std::string> shown;
    };
    for (const auto& [installed, current, shown] : {
             Case{{"C", "A"}, "C", {"A 0", "C 0*"}},
             Case{{"C", "A"}, "0", {"0 0*!", "A 0", "C 0"}},
             Case{{"C", "A"}, "B", {"A 0", "B 0*!", "C 0"}},
             Case{{"C", "A"}, "D", {"A 0", "C 0", "D 0*!"}},
             Case{{"b", "Z"}, "a", {"Z 0", "a 0*!", "b 0"}}, // case counts
             Case{{}, "X", {"X 0*!"}},
         }) {
        Agent agent({{"Facility", current}});
        for (const auto& name : installed)
            std::filesystem::create_directories(agent.place.paths.facilitiesFolder + "/" + name);
        agent.start();
        for (const char* menu : {"Monitoring Facility", "Second Monitoring Facility"}) {
            agent.open(menu);
            EXPECT_EQ(agent.items(menu), shown);
        }
    }
}

TEST(FacilityMenu, IsRebuiltOnEachOpeningAndItsChoicesReachFileAndHost)
{
    Agent agent;
    const std::string menu = "Monitoring Facility";
    const auto folder = agent.place.paths.facilitiesFolder + "/";
    std::filesystem::create_directories(folder + "Studio é");
    startWithHost(agent);
    agent.open(menu);
    EXPECT_THAT(agent.items(menu), ElementsAre("Standard-Surround 0*!", "Studio é 0"));
    const auto ids = agent.ids(menu);
    agent.open(menu);
    EXPECT_EQ(agent.ids(menu), ids);

    EXPECT_TRUE(agent.choose(menu + "/Studio é"));
    EXPECT_EQ(agent.place.session->intAt(kFacility + 264), 1);
    EXPECT_EQ(agent.place.session->textAt(kFacility + 8 + 128), "Studio é");
    EXPECT_NE(agent.stored("Facility"), "absent");
    EXPECT_FALSE(agent.seen(menu + "/Studio é").on) << "checked at the next opening";
    std::filesystem::create_directories(folder + "Annex");
    agent.open(menu);
    EXPECT_THAT(agent.items(menu), ElementsAre("Annex 0", "Studio é 0*"));
    EXPECT_EQ(agent.ids(menu)[1], ids[1]);
}

} // namespace
