// The stored choices in the menu, and each choice's way into the settings file.
#include "tests/app/Agent.h"

namespace {

using namespace Kest::App;
using Kest::Settings::kParameterSettings;
using Kest::Settings::Setting;
using Kest::Settings::setting;
using Kest::Settings::SettingType;
using Kest::Test::Agent;
using testing::ElementsAre;
using Settings = std::map<std::string, std::string>;
using namespace std::string_literals;

constexpr std::size_t kRecord = 1120 + 3376 * 3; // the agent's, in slot 3
constexpr std::size_t kFacility = kRecord + 656;
constexpr int kUntouched = -5;

std::size_t byteOf(const Setting& setting)
{
    return kRecord + 144 + 4 * static_cast<std::size_t>(setting.number);
}

float inSession(Agent& agent, const Setting& setting)
{
    return agent.place.session->floatAt(byteOf(setting));
}

void startWithHost(Agent& agent)
{
    agent.place.startHost();
    for (const auto& setting : kParameterSettings)
        agent.place.session->putFloat(byteOf(setting), kUntouched);
    agent.start();
}

TEST(StartUp, MenuHasTheTitlesOfTheLog)
{
    Agent agent;
    agent.start();
    for (const auto& setting : Kest::Settings::kSettings)
        EXPECT_NO_THROW(agent.at(setting.title)) << setting.key;
}

TEST(Choices, AreShownAtTheStartAndReachTheMenuTheFileAndTheHost)
{
    struct Case {
        const Setting& setting;
        const char *stored, *shown;
        int writtenBack;
        const char* choice;
        int chosen;
    };
    for (const auto& row : {
             Case{setting("SoloMode"), "absent", "Latch", kUntouched, "Exclusive (XOR)", 1},
             Case{setting("SoloMode"), "1", "Exclusive (XOR)", kUntouched, "Latch", 0},
             Case{setting("HdxAuxTrackDelaySetting"), "absent", "Off", 0, "High Latency", 2},
             Case{setting("HdxAuxTrackDelaySetting"), "2", "High Latency", 2, "Off", 0},
             Case{setting("HdxAuxTrackDelaySetting"), "7", "Off", 0, "Off", 0}, // no longer offered
             Case{setting("PhysMonConfig"), "absent", "KestMax 26.1", 26, "Kest 9.1", 14},
             Case{setting("PhysMonConfig"), "11", "Surround 7.1", 11, "Kest 9.1", 14},
             Case{setting("PhysMonConfig"), "23", "none", kUntouched, "Kest 9.1", 14}, // no configuration
         }) {
        Agent agent(row.stored == "absent"s ? Settings{} : Settings{{row.setting.key, row.stored}});
        startWithHost(agent);
        const auto expect = [&](const std::string& checked, int inHost, const std::string& inFile) {
            for (const auto& item : agent.at(row.setting.title).submenu()->itemArray())
                EXPECT_EQ(item->properties().on, item->title() == checked) << item->title();
            EXPECT_EQ(inSession(agent, row.setting), static_cast<float>(inHost)) << row.setting.key;
            EXPECT_EQ(agent.stored(row.setting.key), inFile);
        };
        expect(row.shown, row.writtenBack,
               row.writtenBack == kUntouched ? row.stored : std::to_string(row.writtenBack));
        EXPECT_EQ(agent.stored("Facility"), "absent");
        EXPECT_TRUE(agent.choose(row.setting.title + "/"s + row.choice));
        expect(row.choice, row.chosen, std::to_string(row.chosen));
    }
}

TEST(Toggles, AreWrittenBackAtTheStartAndInvertedByAChoice)
{
    for (const auto& setting : kParameterSettings)
        for (const int stored : {0, 1, 7}) {
            Agent agent({{setting.key, std::to_string(stored)}, {"DAWLinkControlSetting", "1"}});
            startWithHost(agent);
            const auto& item = agent.at(setting.title).properties();
            if (item.action != Action::toggleSetting)
                continue;
            const auto expect = [&](int value) {
                EXPECT_EQ(agent.seen(setting.title).on, value != 0) << setting.key;
                EXPECT_EQ(inSession(agent, setting), static_cast<float>(value)) << setting.key;
                EXPECT_EQ(agent.stored(setting.key), std::to_string(value));
                EXPECT_EQ(agent.seen("Latency Compensation").hidden,
                          agent.stored("DAWLinkControlSetting") == "0");
            };
            const int shown = stored == 7 && setting.type == SettingType::boolean ? 1 : stored;
            const bool isOffered = !item.hidden;
            expect(shown);
            EXPECT_EQ(agent.choose(setting.title), isOffered) << setting.key;
            expect(isOffered ? 1 - shown : shown);
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
