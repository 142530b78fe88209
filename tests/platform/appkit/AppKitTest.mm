// The whole application with AppKit's menu, and that menu read back: it is the model's, whatever happens.
#include "platform/appkit/AppKitFrontEnd.h"
#include "platform/appkit/AppKitWorkspace.h"
#import "platform/appkit/EncodingRow.h"
#include "platform/appkit/MenuItemProperties.h"
#import "platform/appkit/System.h"
#include "tests/app/Agent.h"
#include "tests/support/RandomMenuEdits.h"

#include <sys/stat.h>

// Notes that the application is asked to terminate, and has it go on.
@interface KestQuitNote : NSObject {
@public
    int asked;
}
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

using testing::HasSubstr;

/// Drains what each test leaves to be released.
class Pool : public testing::EmptyTestEventListener {
    void OnTestProgramStart(const testing::UnitTest&) override
    {
        pool = [[NSAutoreleasePool alloc] init];
        if (!AppKit::connectToScreen())
            std::exit(1);
    }
    void OnTestEnd(const testing::TestInfo&) override
    {
        [pool drain];
        pool = [[NSAutoreleasePool alloc] init];
    }
    NSAutoreleasePool* pool = nil;
};
const bool kBegun = (testing::UnitTest::GetInstance()->listeners().Append(new Pool), true);

/// Runs what waits for the main thread, in one of the loop's modes.
void runLoop(NSString* mode = NSDefaultRunLoopMode)
{
    @autoreleasepool {
        [[NSRunLoop currentRunLoop] runMode:mode beforeDate:[NSDate dateWithTimeIntervalSinceNow:0.001]];
    }
}

bool runLoopUntil(const std::function<bool()>& condition)
{
    return eventually([&] { return runLoop(), condition(); });
}

std::string text(NSString* string) { return [string UTF8String]; }

// The whole title in the system's font at its size.
bool isRed(NSMenuItem* item)
{
    NSAttributedString* title = [item attributedTitle];
    if (title == nil)
        return false;
    NSRange all;
    NSDictionary* look = [title attributesAtIndex:0 effectiveRange:&all];
    return
        [[title string] isEqual:[item title]] && all.length == [title length] &&
        [[look objectForKey:NSForegroundColorAttributeName] isEqual:[NSColor redColor]] &&
        [[look objectForKey:NSFontAttributeName] isEqual:[NSFont systemFontOfSize:[NSFont systemFontSize]]];
}

bool isSame(NSMenuItem* item, const App::ItemProperties& wanted)
{
    if (wanted.separator)
        return [item isSeparatorItem];
    auto* shown = (NSMenuItem<KestMacMenuItem>*)item;
    const bool hasView = wanted.view && AppKit::itemsCanHaveViews();
    auto* row = (KestEncodingRow*)(AppKit::itemsCanHaveViews() ? [shown view] : nil);
    if (hasView != (row != nil) || (AppKit::itemsCanHide() && [shown isHidden] != wanted.hidden))
        return false;
    if (hasView && (text([[row nameLabel] stringValue]) != wanted.view->title() ||
                    text([[row percentageLabel] stringValue]) != wanted.view->percentText()))
        return false;
    return text([shown title]) == (wanted.view && !hasView ? plainLabel(wanted) : wanted.title) &&
           [shown tag] == wanted.tag && ([shown state] == NSControlStateValueOn) == wanted.on &&
           [shown isEnabled] == wanted.enabled && isRed(shown) == wanted.red &&
           sel_isEqual([shown action], @selector(chooseItem:)) == (wanted.action != App::Action::none);
}

/// The first item of AppKit's menu that is not as in the model; empty when there is none.
std::string difference(NSMenu* menu, const App::ItemSnapshot& model)
{
    NSInteger index = 0;
    for (const auto& item : model.items) {
        if (item.properties->hidden && !AppKit::itemsCanHide())
            continue;
        const auto place = std::to_string(index) + " " + item.properties->title;
        NSMenuItem* shown = index < [menu numberOfItems] ? (NSMenuItem*)[menu itemAtIndex:index++] : nil;
        if (shown == nil || !isSame(shown, *item.properties) || [shown hasSubmenu] != item.hasSubmenu)
            return place;
        if (const auto below = difference([shown submenu], item); !below.empty())
            return place + " > " + below;
    }
    return [menu autoenablesItems] || index != [menu numberOfItems] ? "number of items" : "";
}

class LoopingFrontEnd : public AppKit::AppKitFrontEnd {
public:
    void runJobs() { runLoop(); }
};

class AppKitAgent : public AgentOn<LoopingFrontEnd> {
public:
    explicit AppKitAgent(const std::map<std::string, std::string>& settings = {}) : AgentOn(settings)
    {
        frontEnd.setApplication(delegate);
    }

    NSMenuItem* item(const std::string& path) const
    {
        const auto slash = path.rfind('/');
        NSMenu* menu = slash == std::string::npos ? frontEnd.statusMenu() : submenu(path.substr(0, slash));
        return (NSMenuItem*)[menu
            itemWithTitle:[NSString stringWithUTF8String:path.substr(slash + 1).c_str()]];
    }
    NSMenu* submenu(const std::string& path) const { return [item(path) submenu]; }
    void choose(const std::string& path) const
    {
        NSMenuItem* chosen = item(path);
        [[chosen menu] performActionForItemAtIndex:[[chosen menu] indexOfItem:chosen]];
    }
    // The messages of AppKit for the status menu and its submenus.
    static void needsUpdate(NSMenu* menu) { [(KestMenuBridge*)[menu delegate] menuNeedsUpdate:menu]; }
    static void willOpen(NSMenu* menu) { [(KestMenuBridge*)[menu delegate] menuWillOpen:menu]; }
    static void didClose(NSMenu* menu) { [(KestMenuBridge*)[menu delegate] menuDidClose:menu]; }
    void open(const std::string& path) const
    {
        needsUpdate(submenu(path));
        willOpen(submenu(path));
    }
    std::string differs() const { return difference(frontEnd.statusMenu(), takeSnapshot(delegate.menu())); }
};

TEST(MenuTree, IsTheModelsAfterEachKindOfChange)
{
    AppKitAgent agent({{"Facility", "Gone"}, {"SoloMode", "1"}});
    std::filesystem::create_directories(agent.place.paths.facilitiesFolder + "/Studio");
    agent.start();
    EXPECT_EQ(agent.differs(), "");
    NSMenu* facilities = agent.submenu("Monitoring Facility");
    agent.open("Monitoring Facility");
    EXPECT_EQ(agent.differs(), "");
    EXPECT_TRUE(isRed(agent.item("Monitoring Facility/Gone")));
    AppKitAgent::didClose(facilities);
    runLoop();
    agent.choose("Monitoring Facility/Studio");
    agent.open("Monitoring Facility");
    EXPECT_EQ([facilities numberOfItems], 1) << "the red item is gone";
    EXPECT_TRUE(agent.report(4711, "/Out/Film/Film_Mix_Prt.wav", 42));
    agent.choose("DAW Link Control"); // another item is no longer hidden
    EXPECT_EQ(agent.differs(), "");
}

TEST(MenuTree, IsTheModelsAfterAThousandRandomChanges)
{
    App::MenuModel model;
    RandomMenuEdits hand{model};
    AppKit::MenuMirror mirror(model, "Menu", nil);
    int most = 0;
    for (int i = 0; i < 1000; ++i) {
        hand.change();
        mirror.show(model.takeChanges());
        ASSERT_EQ(difference(mirror.statusMenu(), takeSnapshot(model)), "") << "change " << i;
        most = std::max(most, model.statusMenu().numberOfItems());
    }
    EXPECT_GE(most, 10) << "the changes were of some size";
}

TEST(MenuTree, KeepsItsItemsInPlaceWhileItIsOpen)
{
    App::MenuModel model;
    RandomMenuEdits hand{model};
    AppKit::MenuMirror mirror(model, "Menu", nil);
    NSMenu* menu = mirror.statusMenu();
    NSUInteger most = 0;
    for (int i = 0; i < 200; ++i) {
        mirror.menuOpened(App::kStatusMenuId);
        NSArray* before = [NSArray arrayWithArray:[menu itemArray]];
        most = std::max(most, [before count]);
        for (int k = 0; k < 5; ++k) {
            hand.change();
            mirror.show(model.takeChanges());
            ASSERT_GE([[menu itemArray] count], [before count]);
            ASSERT_TRUE([[[menu itemArray] subarrayWithRange:NSMakeRange(0, [before count])] isEqual:before]);
        }
        for (NSMenuItem* item in before)
            ASSERT_TRUE(model.itemWithId(AppKit::idOf(item)) != nullptr || ![item isEnabled]);
        NSArray* shown = [NSArray arrayWithArray:[menu itemArray]];
        mirror.menuClosed(App::kStatusMenuId);
        ASSERT_TRUE([[menu itemArray] isEqual:shown]) << "the action is still to come";
        if (hand.upTo(1) == 0) { // opens again before the job runs
            mirror.menuOpened(App::kStatusMenuId);
            mirror.applyDeferredLayouts();
            ASSERT_TRUE([[menu itemArray] isEqual:shown]);
            mirror.menuClosed(App::kStatusMenuId);
        }
        hand.upTo(1) == 0 ? mirror.applyDeferredLayouts() : mirror.menuNeedsUpdate(App::kStatusMenuId);
        ASSERT_EQ(difference(menu, takeSnapshot(model)), "");
    }
    EXPECT_GE(most, 10U) << "there was something to keep";
}

TEST(OpenMenu, IsFilledBeforeItOpensAndShowsProgress)
{
    AppKitAgent agent;
    agent.start();
    agent.delegate.receivedMsgFromBackend(10, 4711, "Film");
    agent.open("Encoding History");
    agent.delegate.receivedMsgFromBackend(20, 4711, "Film");
    EXPECT_EQ(agent.differs(), "");

    std::filesystem::create_directories(agent.place.paths.facilitiesFolder + "/Studio");
    NSMenu* facilities = agent.submenu("Monitoring Facility");
    AppKitAgent::willOpen(facilities);
    AppKitAgent::didClose(facilities);
    EXPECT_EQ(agent.item("Monitoring Facility/Studio"), nil) << "AppKit forbids changes within these";
    AppKitAgent::needsUpdate(facilities);
    EXPECT_NE(agent.item("Monitoring Facility/Studio"), nil);
}

TEST(OpenMenu, ShowsTheSubmenuThatAnItemHasWhenItIsBack)
{
    App::MenuModel model;
    AppKit::MenuMirror mirror(model, "Menu", nil);
    const auto add = [](App::Menu& menu, const char* title) -> App::MenuItem& {
        return menu.addItem(std::make_unique<App::MenuItem>(App::ItemProperties{.title = title}));
    };
    for (const char* below : {"Before", "After"}) {
        model.statusMenu().removeAllItems();
        mirror.show(model.takeChanges());
        auto& item = add(model.statusMenu(), "Submenu");
        item.setSubmenu(std::make_unique<App::Menu>(model));
        add(*item.submenu(), below);
        mirror.show(model.takeChanges());
        EXPECT_EQ(difference(mirror.statusMenu(), takeSnapshot(model)), "") << below;
        mirror.menuOpened(App::kStatusMenuId);
    }
}

// As AppKit does it: the menu closes, then it sends the action of the item at the chosen index.
TEST(Choices, OfABusReachTheHostAlthoughTheListChangedWhileTheMenuWasOpen)
{
    AppKitAgent agent;
    auto& host = agent.place.startHost();
    host.putBus(5, "bus-A", "Bus A");
    host.putBus(6, "bus-B", "Bus B");
    agent.start();
    const std::string buses = "Default Bus";
    ASSERT_TRUE(agent.pumpUntil([&] { return agent.item(buses + "/Bus B") != nil; }));
    NSMenu* menu = agent.submenu(buses);
    const auto defaultBusAfter = [&](int removedSlot, const char* removed, const char* chosen) {
        agent.open(buses);
        host.removeClient(removedSlot);
        EXPECT_TRUE(
            agent.pumpUntil([&] { return agent.at(buses).submenu()->itemWithTitle(removed) == nullptr; }));
        const NSInteger index = [menu indexOfItem:agent.item(buses + "/" + chosen)];
        AppKitAgent::didClose(menu);
        [menu performActionForItemAtIndex:index];
        EXPECT_TRUE(agent.pumpUntil([&] { return agent.differs().empty(); }));
        return host.textAt(3458152);
    };
    EXPECT_EQ(defaultBusAfter(5, "Bus A", "Bus B"), "bus-B");
    host.putText(3458152, "");
    EXPECT_EQ(defaultBusAfter(6, "Bus B", "Bus B"), "") << "no bus takes the index of one that was removed";
}

TEST(Choices, OfTheLastItemQuitOnceTheChoiceIsOver)
{
    AppKitAgent agent;
    agent.start();
    KestQuitNote* quit = [[[KestQuitNote alloc] init] autorelease];
    [NSApp setDelegate:(id)quit];
    agent.choose("Quit Kest Settings");
    EXPECT_EQ(quit->asked, 0) << "not within the choice";
    EXPECT_TRUE(runLoopUntil([&] { return quit->asked == 1; }));
    [NSApp setDelegate:nil];
}

TEST(Jobs, RunInOrderAlsoWhileAMenuOrAPanelIsOpen)
{
    for (NSString* mode : {NSDefaultRunLoopMode, NSEventTrackingRunLoopMode, NSModalPanelRunLoopMode}) {
        LoopingFrontEnd frontEnd;
        std::vector<int> done;
        std::thread([&] {
            for (int i = 0; i < 3; ++i)
                frontEnd.post([&done, i] { done.push_back(i); });
        }).join();
        EXPECT_TRUE(eventually([&] { return runLoop(mode), done.size() == 3; })) << text(mode);
        EXPECT_EQ(done, (std::vector{0, 1, 2}));
    }
}

TEST(Jobs, ThatThrowAreStopped)
{
    LoopingFrontEnd frontEnd;
    bool done = false;
    testing::internal::CaptureStderr();
    frontEnd.post([] { throw std::runtime_error("all is lost"); });
    frontEnd.post([&] { done = true; });
    EXPECT_TRUE(runLoopUntil([&] { return done; }));
    EXPECT_THAT(capturedErrors(), HasSubstr("a job all is lost"));
}

TEST(Workspace, StartsProgramsWithTheirArguments)
{
    const TemporaryFolder folder;
    AppKit::AppKitWorkspace workspace;
    const auto program = folder / "a program";
    writeFile(program, "#!/bin/sh\necho \"$@\" >'" + (folder / "output") + "'\n");
    EXPECT_FALSE(workspace.run(folder / "none", {}));
    EXPECT_FALSE(workspace.run(program, {})) << "not executable";
    EXPECT_FALSE(workspace.launchApplication(folder / "None.app"));
    workspace.selectFile(folder.path()); // there is no file viewer
    testing::internal::CaptureStderr();
    workspace.log("Uninstall failed to launch");
    EXPECT_THAT(capturedErrors(), HasSubstr("Uninstall failed to launch\n"));
    chmod(program.c_str(), 0755);
    EXPECT_TRUE(workspace.run(program, {"unload", "/Library/a b"}));
    EXPECT_TRUE(runLoopUntil([&] { return readFile(folder / "output") == "unload /Library/a b\n"; }));
}

TEST(Workspace, ShowsTheAboutPanel)
{
    AppKit::AppKitWorkspace().showAboutPanel(App::about());
    const auto panel = [] {
        for (NSWindow* window in [NSApp windows])
            if ([window isVisible] && [window isKindOfClass:[NSPanel class]] &&
                [window level] == NSNormalWindowLevel)
                return window;
        return (NSWindow*)nil;
    };
    EXPECT_TRUE(runLoopUntil([&] { return panel() != nil; }));
    [panel() close];
}

} // namespace
} // namespace Kest::Test
