// The stored choices in the menu, and each choice's way into the settings file.
#include "backend/SettingKeys.h"
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
    Agent agent(Settings{{"SoloMode", "1"}});
    startWithHost(agent);
    EXPECT_THAT(agent.items("Solo Mode"), ElementsAre("Latch 0", "Exclusive (XOR) 0*"));
    EXPECT_EQ(agent.place.session->floatAt(kRecord + 160), kUntouched);
}

TEST(StartUp, MenuHasTheTitlesOfTheLog)
{
    Agent agent;
    agent.start();
    for (const auto* setting : Kest::Settings::kSettingKeys)
        EXPECT_NO_THROW(agent.at(setting->title)) << setting->key;
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
    }
}

TEST(Choices, ReachTheMenuAndTheFile)
{
    struct Case {
        const char *menu, *item, *key, *value;
    };
    Agent agent;
    agent.start();
    for (const auto& [menu, item, key, value] : {
             Case{"Solo Mode/", "Exclusive (XOR)", "SoloMode", "1"},
             Case{"Solo Mode/", "Latch", "SoloMode", "0"},
             Case{"HDX Aux Track Delay/", "High Latency", "HdxAuxTrackDelaySetting", "2"},
             Case{"Speaker Configuration/", "Kest 9.1", "PhysMonConfig", "14"},
             Case{"", "DAW Link Control", "DAWLinkControlSetting", "1"},
             Case{"", "Latency Compensation", "LatencyCompensationControlSetting", "0"}, // shown by now
             Case{"", "DAW Link Control", "DAWLinkControlSetting", "0"},
         }) {
        const auto path = std::string(menu) + item;
        EXPECT_TRUE(agent.choose(path)) << path;
        const auto& chosen = agent.at(path);
        EXPECT_EQ(chosen.properties().on, *menu != '\0' || *value != '0') << path;
        for (const auto& other : chosen.menu()->itemArray())
            EXPECT_FALSE(*menu != '\0' && other.get() != &chosen && other->properties().on) << other->title();
        EXPECT_EQ(agent.stored(key), value) << path;
        EXPECT_EQ(agent.seen("Latency Compensation").hidden, agent.stored("DAWLinkControlSetting") == "0")
            << path;
    }
}

TEST(Choices, AreRefusedForWhatIsNotOfferedAndToldOnceWhenTheyChangeSomething)
{
    Agent agent;
    agent.start();
    const auto changes = agent.frontEnd.changes;
    for (const char* path : {"Default Panner Objects", "Latency Compensation",
                             "Encoding History/Clear History", "Facility", "Solo Mode"})
        EXPECT_FALSE(agent.choose(path)) << path;
    EXPECT_FALSE(agent.delegate.choose(-1) || agent.delegate.choose(10000));
    EXPECT_EQ(agent.stored("defaultPannerObjects"), "0");
    EXPECT_EQ(agent.frontEnd.changes, changes);
    agent.choose("Solo Mode/Exclusive (XOR)"); // two items change
    agent.choose("Solo Mode/Exclusive (XOR)");
    EXPECT_EQ(agent.frontEnd.changes, changes + 1);
}

TEST(FacilityMenu, ShowsAStaleChoiceInRedWhereItWouldSort)
{
    using Names = std::vector<std::string>;
    using Case = std::tuple<Names, std::string, Names>;
    for (const auto& [installed, current, shown] : {
             Case{{"C", "A"}, "C", {"A 0", "C 0*"}},
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
    EXPECT_TRUE(agent.choose(menu + "/Studio é"));
    EXPECT_EQ(agent.place.session->intAt(kFacility + 264), 1);
    EXPECT_EQ(agent.place.session->textAt(kFacility + 8 + 128), "Studio é");
    EXPECT_NE(agent.stored("Facility"), "absent");
    std::filesystem::create_directories(folder + "Annex");
    agent.open(menu);
    EXPECT_THAT(agent.items(menu), ElementsAre("Annex 0", "Studio é 0*"));
    EXPECT_EQ(agent.ids(menu)[1], ids[1]);
}

} // namespace
