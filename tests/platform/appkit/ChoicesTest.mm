// Items of each kind, chosen through AppKit, have their effect.
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

TEST(Choices, OfEachKindReachWhatTheyAreFor)
{
    AppKitAgent agent;
    std::filesystem::create_directories(agent.place.paths.facilitiesFolder + "/Studio é");
    auto& host = agent.place.startHost();
    host.putBus(5, "bus-5", "Dialog");
    agent.start();
    agent.choose("DAW Link Control");
    EXPECT_EQ(agent.stored("DAWLinkControlSetting"), "1");
    agent.choose("Speaker Configuration/Stereo");
    EXPECT_EQ(agent.stored("PhysMonConfig"), "1");
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
    EXPECT_THAT(agent.workspace.asked, ElementsAre("select /Out/Film"));
    EXPECT_TRUE(agent.pumpUntil([&] { return [history numberOfItems] == 3; }));
    AppKitAgent::choose([history itemAtIndex:0]);
    EXPECT_EQ([history numberOfItems], 2);
    EXPECT_EQ(agent.menuLines(), agent.modelLines());
}

// As AppKit does it: the menu closes, then it sends the action of the item at the chosen index.
TEST(Choices, OfABusReachTheHostAlthoughTheListChangedWhileTheMenuWasOpen)
{
    AppKitAgent agent;
    auto& host = agent.place.startHost();
    host.putBus(5, "bus-A", "Bus A");
    host.putBus(6, "bus-B", "Bus B");
    host.putBus(7, "bus-C", "Bus C");
    agent.start();
    const std::string buses = "Default Bus";
    ASSERT_TRUE(agent.pumpUntil([&] { return agent.item(buses + "/Bus C") != nil; }));
    NSMenu* menu = agent.submenu(buses);
    const auto removeBus = [&](int slot, const std::string& name) {
        host.removeClient(slot);
        return agent.pumpUntil([&] { return agent.at(buses).submenu()->itemWithTitle(name) == nullptr; });
    };
    const auto choose = [&](const std::string& name) {
        const NSInteger index = [menu indexOfItem:agent.item(buses + "/" + name)];
        AppKitAgent::didClose(menu);
        AppKitAgent::didClose(agent.frontEnd.statusMenu());
        [menu performActionForItemAtIndex:index];
    };

    agent.open(buses);
    ASSERT_TRUE(removeBus(5, "Bus A"));
    choose("Bus B");
    EXPECT_EQ(host.textAt(kDefaultBus), "bus-B");
    EXPECT_TRUE(agent.pumpUntil([&] { return agent.menuLines() == agent.modelLines(); }));

    agent.open(buses);
    ASSERT_TRUE(removeBus(6, "Bus B"));
    choose("Bus B");
    EXPECT_EQ(host.textAt(kDefaultBus), "bus-B") << "no bus takes the index of one that was removed";
    EXPECT_TRUE(agent.pumpUntil([&] { return agent.menuLines() == agent.modelLines(); }));
}

TEST(Choices, OfTheLastItemQuitOnceTheChoiceIsOver)
{
    AppKitAgent agent;
    agent.start();
    KestQuitNote* quit = [[[KestQuitNote alloc] init] autorelease];
    [NSApp setDelegate:(id)quit];
    NSMenu* menu = agent.frontEnd.statusMenu();
    [menu performActionForItemAtIndex:[menu numberOfItems] - 1];
    EXPECT_EQ(quit->asked, 0) << "not within the choice";
    EXPECT_TRUE(agent.pumpUntil([&] { return quit->asked == 1; }));
    [NSApp setDelegate:nil];
}

} // namespace
} // namespace Kest::Test
