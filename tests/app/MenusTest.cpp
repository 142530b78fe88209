#include "tests/app/Agent.h"

namespace {

using namespace Kest::App;
using namespace Kest::Test;
using Kest::Settings::kParameterSettings;
using Kest::Settings::Setting;
using Kest::Settings::setting;
using testing::ElementsAre;
using Strings = std::vector<std::string>;
using Values = std::map<std::string, std::string>;
namespace fs = std::filesystem;

constexpr std::size_t kRecord = 1120 + 3376 * 3; // the agent's, in slot 3
constexpr int kUntouched = -5;
const std::string kFacilities = "Monitoring Facility";

class HostedAgent : public Agent {
public:
    explicit HostedAgent(const Values& stored = {}) : Agent(stored)
    {
        for (const auto& each : kParameterSettings)
            host.put(byteOf(each), static_cast<float>(kUntouched));
        start();
    }
    void expect(const Setting& setting, int inHost, const std::string& inFile)
    {
        EXPECT_EQ(host.at<float>(byteOf(setting)), static_cast<float>(inHost)) << setting.key;
        EXPECT_EQ(stored(setting.key), inFile) << setting.key;
    }
    /// Returns the items of the first facility menu as it opens.
    Strings facilities(const Strings& installed)
    {
        for (const auto& name : installed)
            fs::create_directories(system.paths.facilitiesFolder + "/" + name);
        open(kFacilities);
        return items(kFacilities);
    }
    // From slot 5 on; the bus in slot 5 is the client "bus-5".
    void putBuses(const Strings& labels)
    {
        for (int slot = 5; const auto& label : labels) {
            host.putBus(slot, "bus-" + std::to_string(slot), label);
            ++slot;
        }
    }
    bool showsBuses(const Strings& wanted)
    {
        return pumpUntil([&] { return items("Default Bus") == wanted; });
    }
    /// Returns the host's default bus after a choice.
    std::string chooseBus(const std::string& name)
    {
        EXPECT_TRUE(choose("Default Bus/" + name) && properties("Default Bus/" + name).on);
        return host.textAt(3458152);
    }

    RawSegment& host = system.startHost();

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
        HostedAgent agent(row.stored == "absent" ? Values{} : Values{{row.setting.key, row.stored}});
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
            HostedAgent agent({{setting.key, std::to_string(stored)}, {"DAWLinkControlSetting", "1"}});
            if (agent.properties(setting.title).action != Action::toggleSetting)
                continue;
            const auto expect = [&](int value) {
                EXPECT_EQ(agent.properties(setting.title).on, value != 0) << setting.key;
                agent.expect(setting, value, std::to_string(value));
                EXPECT_EQ(agent.properties("Latency Compensation").hidden,
                          agent.stored("DAWLinkControlSetting") == "0");
            };
            const bool isBoolean = setting.type == Kest::Settings::SettingType::boolean;
            const int shown = stored == 7 && isBoolean ? 1 : stored;
            const bool isOffered = !agent.properties(setting.title).hidden;
            expect(shown);
            EXPECT_EQ(agent.choose(setting.title), isOffered) << setting.key;
            expect(isOffered ? 1 - shown : shown);
        }
}

TEST(Choices, AreRefusedForWhatIsNotOffered)
{
    Agent agent;
    agent.start();
    for (const char* path : {"Default Panner Objects", "Latency Compensation", "Facility", "Solo Mode"})
        EXPECT_FALSE(agent.choose(path)) << path;
    for (const int none : {-1, 10000}) {
        EXPECT_FALSE(agent.delegate.choose(none));
        agent.delegate.menuWillOpen(none);
    }
}

TEST(FacilityMenu, ShowsAStaleChoiceInRedAtItsSortedPosition)
{
    const std::tuple<Strings, std::string, Strings> cases[] = {
        {{"C", "A"}, "C", {"A 0", "C 0*"}},
        {{"C", "A"}, "B", {"A 0", "B 0*!", "C 0"}},
        {{"C", "A"}, "D", {"A 0", "C 0", "D 0*!"}},
        {{"b", "Z"}, "a", {"Z 0", "a 0*!", "b 0"}}, // case counts
        {{}, "X", {"X 0*!"}},
    };
    for (const auto& [installed, current, shown] : cases)
        EXPECT_EQ(HostedAgent({{"Facility", current}}).facilities(installed), shown);
}

TEST(FacilityMenu, IsRefilledAtEachOpeningAndItsChoicesReachFileAndHost)
{
    HostedAgent agent;
    EXPECT_THAT(agent.facilities({"Studio é"}), ElementsAre("Standard-Surround 0*!", "Studio é 0"));
    const auto id = agent.at(kFacilities + "/Studio é").id();
    EXPECT_TRUE(agent.choose(kFacilities + "/Studio é"));
    EXPECT_EQ(agent.host.at<int>(kRecord + 656 + 264), 1);
    EXPECT_EQ(agent.host.textAt(kRecord + 656 + 8 + 128), "Studio é");
    EXPECT_EQ(agent.stored("Facility"), "Studio é");
    EXPECT_THAT(agent.facilities({"Annex"}), ElementsAre("Annex 0", "Studio é 0*"));
    EXPECT_EQ(agent.at(kFacilities + "/Studio é").id(), id);
    agent.open("Second Monitoring Facility");
    EXPECT_EQ(agent.items("Second Monitoring Facility"), agent.items(kFacilities));
}

TEST(DefaultBusMenu, FollowsTheBusesOfTheHostAndTheChoice)
{
    captureOutput();
    HostedAgent agent;
    EXPECT_TRUE(agent.showsBuses({"Main Bus 0*"}));
    EXPECT_THAT(capturedOutput(), testing::Not(testing::HasSubstr("bus")));
    agent.putBuses({"Zeta"});
    ASSERT_TRUE(agent.frontEnd.awaitJob());
    msg_from_backend_callback(&agent.delegate, 100, 0, ""); // replaces the message about the buses
    EXPECT_TRUE(agent.showsBuses({"Main Bus 0*", "- 0", "Zeta 1"}));
    const auto id = agent.at("Default Bus/Zeta").id();
    agent.putBuses({"Zeta", "Alpha"});
    EXPECT_TRUE(agent.showsBuses({"Main Bus 0*", "- 0", "Alpha 1", "Zeta 2"}));
    EXPECT_EQ(agent.chooseBus("Zeta"), "bus-5");
    EXPECT_TRUE(agent.showsBuses({"Main Bus 0", "- 0", "Alpha 1", "Zeta 2*"}));
    EXPECT_EQ(agent.at("Default Bus/Zeta").id(), id);
    agent.host.removeClient(6);
    agent.host.putText(RawSegment::slot(5), "bus-7");
    EXPECT_TRUE(agent.showsBuses({"Main Bus 0", "- 0", "Zeta 1*"}));
    EXPECT_TRUE(eventually([&] { return agent.chooseBus("Zeta") == "bus-7"; }));
    EXPECT_EQ(agent.chooseBus("Main Bus"), "bus-7") << "no bus has that name";
}

TEST(DefaultBusMenu, PassesMacRomanNamesOfTwoCharactersOnAndPrintsThem)
{
    HostedAgent agent;
    captureOutput();
    agent.putBuses({"Caf\x8E \xF0", "X", "\x80", "A \x1B[31m\n\xC2\x9B", "Caf\xC3\xA9", "AB"});
    ASSERT_TRUE(agent.pumpUntil([&] { return agent.items("Default Bus").size() == 8; }));
    for (const auto* name : {"Café \uF8FF", "X", "Ä"}) // the others are one character, whatever its bytes
        EXPECT_EQ(agent.chooseBus(name), "bus-5");
    EXPECT_EQ(agent.chooseBus("AB"), "bus-10");
    EXPECT_THAT(capturedOutput(),
                testing::EndsWith("bus 0 : Main Bus\nbus 1 : A ?[31m??\nbus 2 : AB\nbus 3 : Café \uF8FF\n"
                                  "bus 4 : Café\nbus 5 : X\nbus 6 : Ä\n\n"))
        << "UTF-8 as it is, other bytes as the menu shows them";
}

TEST(Services, StartTheirPrograms)
{
    Agent agent;
    agent.start();
    EXPECT_EQ(agent.frontEnd.imageName, "Kestronics_Logo_19px");
    const auto& paths = agent.system.paths;
    fs::remove(paths.lastUserFile);
    agent.workspace.whenRun = [&] { EXPECT_TRUE(fs::exists(paths.lastUserFile)); };
    for (const char* path : {"Restart Host Service", "Restart Host Service", "Architecture/32 Bit",
                             "Architecture/64 Bit", "Open Uninstaller", "About Kest Settings"})
        EXPECT_TRUE(agent.choose(path)) << path;
    const auto restart = "run " + paths.restartCommand;
    EXPECT_THAT(agent.workspace.calls,
                ElementsAre(restart, restart, "launch " + paths.uninstaller, "about Kest Settings"));
    agent.workspace.applicationsLaunch = false;
    captureErrors();
    EXPECT_TRUE(agent.choose("Open Uninstaller"));
    EXPECT_THAT(capturedErrors(), testing::HasSubstr("Uninstall failed to launch\n"));
    EXPECT_FALSE(agent.frontEnd.hasQuit);
    EXPECT_TRUE(agent.choose("Quit Kest Settings"));
    EXPECT_TRUE(agent.frontEnd.hasQuit);
}

TEST(Delegate, EndsTheBackendBeforeItUnloadsTheLaunchAgentAndIgnoresWhatArrivesBeforeItsStart)
{
    Agent agent;
    EXPECT_FALSE(agent.delegate.choose(1));
    agent.delegate.menuWillOpen(1);
    agent.delegate.receivedMsgFromBackend(50, 4711, "Film_Mix");
    agent.delegate.applicationWillTerminate();
    const auto unload = "run /bin/launchctl unload " + agent.system.paths.launchAgent;
    EXPECT_THAT(agent.workspace.calls, ElementsAre(unload));

    agent.start();
    EXPECT_EQ(agent.entry(4711), nullptr);
    const auto& fifo = agent.system.paths.encodingProgressFifo;
    ASSERT_TRUE(agent.report(4712, ""));
    agent.workspace.whenRun = [&] { EXPECT_FALSE(fs::exists(fifo)); };
    msg_from_backend_callback(&agent.delegate, 2, 0, ""); // its job runs after the end
    agent.delegate.applicationWillTerminate();
    EXPECT_THAT(agent.workspace.calls, ElementsAre(unload, unload));
    EXPECT_EQ(agent.frontEnd.runJobs(), 1U);
    EXPECT_THAT(agent.delegate.notes, ElementsAre());
    EXPECT_FALSE(agent.choose("Quit Kest Settings"));
}

} // namespace
