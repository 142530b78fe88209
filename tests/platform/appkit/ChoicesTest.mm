// Each item, chosen through AppKit, has its effect.
#include "tables/KestSettingsTables.h"
#include "tests/platform/appkit/AppKitAgent.h"

// Notes that the application is asked to terminate, and has it go on.
@interface KestQuitNote : NSObject {
@public
    int asked;
}
- (NSApplicationTerminateReply)applicationShouldTerminate:(NSApplication*)application;
@end

@implementation KestQuitNote
- (NSApplicationTerminateReply)applicationShouldTerminate:(NSApplication*)application
{
    ++asked;
    return NSTerminateCancel;
}
@end

namespace Kest::Test {
namespace {

using testing::ElementsAre;

constexpr std::size_t kRecord = 1120 + 3376 * 3; // the agent's, in slot 3
constexpr std::size_t kDefaultBus = 3458152;

TEST(EachChoice, ReachesTheFileAndTheSegment)
{
    struct Case {
        const char *path, *key;
        int value;
        std::size_t offset; // in the agent's record
        bool staysOn;
    };
    AppKitAgent agent;
    auto& host = agent.place.startHost();
    agent.start();
    const std::vector<Case> cases = {
        {"Solo Mode/Exclusive (XOR)", "SoloMode", 1, 160, true},
        {"Solo Mode/Latch", "SoloMode", 0, 160, true},
        {"HDX Aux Track Delay/High Latency", "HdxAuxTrackDelaySetting", 2, 272, true},
        {"HDX Aux Track Delay/Low Latency", "HdxAuxTrackDelaySetting", 1, 272, true},
        {"HDX Aux Track Delay/Off", "HdxAuxTrackDelaySetting", 0, 272, true},
        {"DAW Link Control", "DAWLinkControlSetting", 1, 276, true},
        {"Latency Compensation", "LatencyCompensationControlSetting", 0, 304, false},
        {"Latency Compensation", "LatencyCompensationControlSetting", 1, 304, true},
    };
    for (const auto& [path, key, value, offset, staysOn] : cases) {
        host.putFloat(kRecord + offset, -5);
        agent.choose(path);
        EXPECT_EQ(agent.stored(key), std::to_string(value)) << path;
        EXPECT_EQ(host.floatAt(kRecord + offset), static_cast<float>(value)) << path;
        EXPECT_EQ([agent.item(path) state] == NSControlStateValueOn, staysOn) << path;
        EXPECT_EQ(agent.menuLines(), agent.modelLines());
    }
    for (const auto& [id, name] : Settings::sSpkrConf2Name) {
        agent.choose("Speaker Configuration/" + name);
        const int layout = static_cast<int>(Settings::sSpkrConf2Layout.at(id));
        EXPECT_EQ(agent.stored("PhysMonConfig"), std::to_string(layout)) << name;
        EXPECT_EQ(host.floatAt(kRecord + 308), static_cast<float>(layout)) << name;
        EXPECT_EQ(agent.menuLines(), agent.modelLines());
    }
}

TEST(EachChoice, OfABusAFacilityAndAnEncodingReachesWhatItIsFor)
{
    AppKitAgent agent;
    std::filesystem::create_directories(agent.place.paths.facilitiesFolder + "/Studio é");
    auto& host = agent.place.startHost();
    host.putBus(5, "bus-5", "Dialog");
    agent.start();
    ASSERT_TRUE(agent.pumpUntil([&] { return agent.item("Default Bus/Dialog") != nil; }));
    agent.choose("Default Bus/Dialog");
    EXPECT_EQ(host.textAt(kDefaultBus), "bus-5");

    agent.open("Monitoring Facility");
    agent.choose("Monitoring Facility/Studio é");
    agent.close("Monitoring Facility");
    EXPECT_EQ(host.textAt(kRecord + 656 + 8 + 128), "Studio é");
    EXPECT_NE(agent.stored("Facility"), "absent");

    ASSERT_TRUE(agent.report(4711, "/Out/Film/Film.wav"));
    ASSERT_TRUE(agent.report(4712, "/Out/Other/Other.wav"));
    NSMenu* history = [agent.item("Encoding History") submenu];
    for (const int tag : {1, App::kAbortTag})
        AppKitAgent::choose((NSMenuItem*)[[[history itemAtIndex:2] submenu] itemWithTag:tag]);
    EXPECT_THAT(agent.workspace.asked,
                ElementsAre("select /Out/Film", "shell kill -9 4711", "shell rm -Rf '/Out/Film'"));
    EXPECT_EQ([history numberOfItems], 3);
    AppKitAgent::choose([history itemAtIndex:0]);
    EXPECT_EQ([history numberOfItems], 2);
    EXPECT_EQ(agent.menuLines(), agent.modelLines());
}

TEST(EachChoice, OfAServiceAsksForItAndTheLastOneQuits)
{
    AppKitAgent agent;
    agent.start();
    KestQuitNote* quit = [[[KestQuitNote alloc] init] autorelease];
    [NSApp setDelegate:(id)quit];
    const auto before = agent.modelLines();
    NSMenu* menu = agent.frontEnd.statusMenu();
    for (const char* path : {"Restart Host Service", "Architecture/32 Bit", "Architecture/64 Bit",
                             "Open Uninstaller", "About Kest Settings", "Encoding History/Clear History"})
        agent.choose(path);
    const auto& paths = agent.place.paths;
    EXPECT_THAT(agent.workspace.asked, ElementsAre("run " + paths.restartCommand,
                                                   "launch " + paths.uninstaller, "about Kest Settings"));
    EXPECT_TRUE(std::filesystem::exists(paths.lastUserMarker));
    EXPECT_EQ(agent.menuLines(), before);

    [menu performActionForItemAtIndex:[menu numberOfItems] - 1];
    EXPECT_EQ(quit->asked, 0) << "not within the choice";
    EXPECT_TRUE(agent.pumpUntil([&] { return quit->asked == 1; }));
    [NSApp setDelegate:nil];
}

} // namespace
} // namespace Kest::Test
