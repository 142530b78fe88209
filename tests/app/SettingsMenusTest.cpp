// The stored choices in the menu, and each choice's way into the settings file and to the host.
#include "tests/app/Agent.h"

namespace {

using namespace Kest::App;
using namespace Kest::Test;
using Kest::Settings::kParameterSettings;
using Kest::Settings::Setting;
using Kest::Settings::setting;
using testing::ElementsAre;
using Values = std::map<std::string, std::string>;

constexpr std::size_t kRecord = 1120 + 3376 * 3; // the agent's, in slot 3
constexpr int kUntouched = -5;

class SettingsAgent : public Agent {
public:
    explicit SettingsAgent(const Values& stored) : Agent(stored)
    {
        auto& host = place.startHost();
        for (const auto& each : kParameterSettings)
            host.putFloat(byteOf(each), kUntouched);
        start();
    }
    void expect(const Setting& setting, int inHost, const std::string& inFile)
    {
        EXPECT_EQ(place.session->floatAt(byteOf(setting)), static_cast<float>(inHost)) << setting.key;
        EXPECT_EQ(stored(setting.key), inFile) << setting.key;
    }

private:
    static std::size_t byteOf(const Setting& setting)
    {
        return kRecord + 144 + 4 * static_cast<std::size_t>(setting.number);
    }
};

TEST(Choices, AreShownAtTheStartAndReachTheMenuTheFileAndTheHost)
{
    const struct {
        const Setting& setting;
        std::string stored, shown;
        int writtenBack;
        std::string choice;
        int chosen;
    } rows[] = {
        {setting("SoloMode"), "absent", "Latch", kUntouched, "Exclusive (XOR)", 1},
        {setting("SoloMode"), "1", "Exclusive (XOR)", kUntouched, "Latch", 0},
        {setting("HdxAuxTrackDelaySetting"), "absent", "Off", 0, "High Latency", 2},
        {setting("HdxAuxTrackDelaySetting"), "2", "High Latency", 2, "Off", 0},
        {setting("HdxAuxTrackDelaySetting"), "7", "Off", 0, "Off", 0}, // no longer offered
        {setting("PhysMonConfig"), "absent", "KestMax 26.1", 26, "Kest 9.1", 14},
        {setting("PhysMonConfig"), "11", "Surround 7.1", 11, "Kest 9.1", 14},
        {setting("PhysMonConfig"), "23", "none", kUntouched, "Kest 9.1", 14}, // no configuration
    };
    for (const auto& row : rows) {
        const std::string menu = row.setting.title;
        SettingsAgent agent(row.stored == "absent" ? Values{} : Values{{row.setting.key, row.stored}});
        const auto expect = [&](const std::string& checked, int inHost, const std::string& inFile) {
            for (const auto& item : agent.at(menu).submenu()->itemArray())
                EXPECT_EQ(item->properties().on, item->title() == checked) << item->title();
            agent.expect(row.setting, inHost, inFile);
        };
        expect(row.shown, row.writtenBack,
               row.writtenBack == kUntouched ? row.stored : std::to_string(row.writtenBack));
        EXPECT_TRUE(agent.choose(menu + "/" + row.choice));
        expect(row.choice, row.chosen, std::to_string(row.chosen));
    }
}

TEST(Toggles, AreWrittenBackAtTheStartAndInvertedByAChoice)
{
    for (const auto& setting : kParameterSettings)
        for (const int stored : {0, 1, 7}) {
            SettingsAgent agent({{setting.key, std::to_string(stored)}, {"DAWLinkControlSetting", "1"}});
            const auto& item = agent.at(setting.title).properties();
            if (item.action != Action::toggleSetting)
                continue;
            const auto expect = [&](int value) {
                EXPECT_EQ(agent.seen(setting.title).on, value != 0) << setting.key;
                agent.expect(setting, value, std::to_string(value));
                EXPECT_EQ(agent.seen("Latency Compensation").hidden,
                          agent.stored("DAWLinkControlSetting") == "0");
            };
            const bool isBoolean = setting.type == Kest::Settings::SettingType::boolean;
            const int shown = stored == 7 && isBoolean ? 1 : stored;
            const bool isOffered = !item.hidden;
            expect(shown);
            EXPECT_EQ(agent.choose(setting.title), isOffered) << setting.key;
            expect(isOffered ? 1 - shown : shown);
        }
}

TEST(Choices, AreRefusedForWhatIsNotOfferedAndReportedOnceWhenTheyChangeSomething)
{
    Agent agent;
    agent.start();
    const auto changes = agent.frontEnd.changes;
    for (const char* path : {"Default Panner Objects", "Latency Compensation", "Facility", "Solo Mode"})
        EXPECT_FALSE(agent.choose(path)) << path;
    EXPECT_FALSE(agent.delegate.choose(-1) || agent.delegate.choose(10000));
    EXPECT_EQ(agent.stored("defaultPannerObjects"), "0");
    EXPECT_EQ(agent.stored("Facility"), "absent");
    EXPECT_EQ(agent.frontEnd.changes, changes);
    agent.choose("Solo Mode/Exclusive (XOR)"); // two items change
    agent.choose("Solo Mode/Exclusive (XOR)");
    EXPECT_EQ(agent.frontEnd.changes, changes + 1);
}

TEST(FacilityMenu, ShowsAStaleChoiceInRedAtItsSortedPosition)
{
    using Names = std::vector<std::string>;
    const std::tuple<Names, std::string, Names> cases[] = {
        {{"C", "A"}, "C", {"A 0", "C 0*"}},
        {{"C", "A"}, "B", {"A 0", "B 0*!", "C 0"}},
        {{"C", "A"}, "D", {"A 0", "C 0", "D 0*!"}},
        {{"b", "Z"}, "a", {"Z 0", "a 0*!", "b 0"}}, // case counts
        {{}, "X", {"X 0*!"}},
    };
    for (const auto& [installed, current, shown] : cases) {
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

TEST(FacilityMenu, IsRefilledAtEachOpeningAndItsChoicesReachFileAndHost)
{
    SettingsAgent agent({});
    const std::string menu = "Monitoring Facility";
    const auto folder = agent.place.paths.facilitiesFolder + "/";
    std::filesystem::create_directories(folder + "Studio é");
    agent.open(menu);
    EXPECT_THAT(agent.items(menu), ElementsAre("Standard-Surround 0*!", "Studio é 0"));
    const auto ids = agent.ids(menu);
    EXPECT_TRUE(agent.choose(menu + "/Studio é"));
    EXPECT_EQ(agent.place.session->intAt(kRecord + 656 + 264), 1);
    EXPECT_EQ(agent.place.session->textAt(kRecord + 656 + 8 + 128), "Studio é");
    EXPECT_EQ(agent.stored("Facility"), "Studio &#233;");
    std::filesystem::create_directories(folder + "Annex");
    agent.open(menu);
    EXPECT_THAT(agent.items(menu), ElementsAre("Annex 0", "Studio é 0*"));
    EXPECT_EQ(agent.ids(menu)[1], ids[1]);
}

} // namespace
