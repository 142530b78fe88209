#include "platform/appkit/AppKitFrontEnd.h"
#include "platform/appkit/AppKitWorkspace.h"
#import "platform/appkit/EncodingRow.h"
#include "platform/appkit/MenuItemProperties.h"
#import "platform/appkit/System.h"
#include "tests/app/Agent.h"
#include "tests/support/RandomMenuEdits.h"

#include <sys/stat.h>

static int terminationRequests = 0;

@interface KestTerminationDelegate : NSObject
@end

@implementation KestTerminationDelegate
+ (NSApplicationTerminateReply)applicationShouldTerminate:(NSApplication*)application
{
    ++terminationRequests;
    return NSTerminateCancel;
}
@end

namespace Kest::Test {
namespace {

using testing::HasSubstr;

/// Each test has its own autorelease pool, and the screen.
class Pool : public testing::EmptyTestEventListener {
    void OnTestStart(const testing::TestInfo&) override
    {
        pool = [[NSAutoreleasePool alloc] init];
        AppKit::connectToScreen();
    }
    void OnTestEnd(const testing::TestInfo&) override { [pool drain]; }

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

std::string text(NSString* string) { return [string UTF8String]; }

// The whole title in the system's font at its size.
bool isRed(NSMenuItem* item)
{
    NSDictionary* attributes =
        [NSDictionary dictionaryWithObjectsAndKeys:[NSColor redColor], NSForegroundColorAttributeName,
                                                   [NSFont systemFontOfSize:[NSFont systemFontSize]],
                                                   NSFontAttributeName, nil];
    NSAttributedString* title = [[NSAttributedString alloc] initWithString:[item title]
                                                                attributes:attributes];
    return [[item attributedTitle] isEqual:[title autorelease]];
}

bool isSame(NSMenuItem* item, const App::ItemProperties& wanted)
{
    if (wanted.separator)
        return [item isSeparatorItem];
    auto* shown = (NSMenuItem<KestMacMenuItem>*)item;
    const bool hasView = wanted.encoding && AppKit::itemsCanHaveViews();
    auto* row = (KestEncodingRow*)(AppKit::itemsCanHaveViews() ? [shown view] : nil);
    if (hasView != (row != nil) || (AppKit::itemsCanHide() && [shown isHidden] != wanted.hidden))
        return false;
    if (hasView && (text([[row nameLabel] stringValue]) != wanted.encoding->title() ||
                    text([[row percentageLabel] stringValue]) != wanted.encoding->percentText()))
        return false;
    return text([shown title]) == (wanted.encoding && !hasView ? plainLabel(wanted) : wanted.title) &&
           [shown tag] == wanted.tag && ([shown state] == NSControlStateValueOn) == wanted.on &&
           [shown isEnabled] == wanted.enabled && isRed(shown) == wanted.red &&
           sel_isEqual([shown action], @selector(chooseItem:)) == (wanted.action != App::Action::none);
}

/// The path of the first item of AppKit's menu that differs from the model's; empty if there is none.
std::string difference(NSMenu* menu, const App::ItemSnapshot& model)
{
    NSInteger index = 0;
    for (const auto& item : model.items) {
        if (item.properties->hidden && !AppKit::itemsCanHide())
            continue;
        const auto name = std::to_string(index) + " " + item.properties->title;
        NSMenuItem* shown = index < [menu numberOfItems] ? (NSMenuItem*)[menu itemAtIndex:index++] : nil;
        if (shown == nil || !isSame(shown, *item.properties) || [shown hasSubmenu] != item.hasSubmenu)
            return name;
        if (const auto below = difference([shown submenu], item); !below.empty())
            return name + " > " + below;
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
        start();
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
    /// The delegate of all menus.
    KestMenuBridge* bridge() const { return (KestMenuBridge*)[frontEnd.statusMenu() delegate]; }
    void open(const std::string& path) const
    {
        [bridge() menuNeedsUpdate:submenu(path)];
        [bridge() menuWillOpen:submenu(path)];
    }
    void close(const std::string& path) const { [bridge() menuDidClose:submenu(path)]; }
    std::string differs() const { return difference(frontEnd.statusMenu(), takeSnapshot(delegate.menu())); }
};

TEST(MenuTree, IsTheModelsAfterEachKindOfChange)
{
    AppKitAgent agent({{"Facility", "Gone"}, {"SoloMode", "1"}});
    EXPECT_EQ(agent.differs(), "");
    agent.open("Monitoring Facility");
    EXPECT_TRUE(isRed(agent.item("Monitoring Facility/Gone")));
    agent.close("Monitoring Facility");
    std::filesystem::create_directories(agent.system.paths.facilitiesFolder + "/Gone");
    agent.open("Monitoring Facility");
    EXPECT_FALSE(isRed(agent.item("Monitoring Facility/Gone")));
    EXPECT_TRUE(agent.report(4711, "/Out/Film/Film_Mix_Prt.wav", 42));
    agent.choose("DAW Link Control"); // another item is no longer hidden
    EXPECT_EQ(agent.differs(), "");
    EXPECT_EQ(agent.stored("DAWLinkControlSetting"), "1");
}

// AppKit forbids changes while it reports either, and sends the action of the item at the chosen index later.
TEST(MenuTree, IsUnchangedWhenAMenuOpensAndCloses)
{
    AppKitAgent agent;
    EXPECT_TRUE(agent.report(4711, "/Out/Film/Film_Mix_Prt.wav", 100));
    agent.open("Encoding History");
    agent.choose("Encoding History/Clear History");
    std::filesystem::create_directories(agent.system.paths.facilitiesFolder + "/Studio");
    NSArray* shown = [NSArray arrayWithArray:[agent.submenu("Encoding History") itemArray]];
    agent.close("Encoding History");
    EXPECT_TRUE([[agent.submenu("Encoding History") itemArray] isEqual:shown]);
    EXPECT_NE(agent.differs(), "");
    EXPECT_TRUE(agent.pumpUntil([&] { return agent.differs().empty(); }));

    [agent.bridge() menuWillOpen:agent.submenu("Monitoring Facility")];
    EXPECT_EQ(agent.item("Monitoring Facility/Studio"), nil);
}

TEST(MenuTree, IsTheModelsAfterRandomChangesAndKeepsItsOrderWhileItIsOpen)
{
    App::MenuModel model;
    RandomMenuEdits edits{model};
    AppKit::MenuMirror mirror(model, "Menu", nil);
    NSMenu* menu = mirror.statusMenu();
    NSUInteger maximum = 0;
    for (int i = 0; i < 2000; ++i) {
        edits.change();
        mirror.show(model.takeChanges());
        ASSERT_EQ(difference(menu, takeSnapshot(model)), "") << "change " << i;
        if (i % 10 != 0)
            continue;
        mirror.menuOpened(App::kStatusMenuId);
        NSArray* before = [NSArray arrayWithArray:[menu itemArray]];
        maximum = std::max(maximum, [before count]);
        for (int k = 0; k < 5; ++k) {
            edits.change();
            mirror.show(model.takeChanges());
            ASSERT_GE([[menu itemArray] count], [before count]);
            ASSERT_TRUE([[[menu itemArray] subarrayWithRange:NSMakeRange(0, [before count])] isEqual:before]);
        }
        for (NSMenuItem* item in before)
            ASSERT_TRUE(model.itemWithId(AppKit::idOf(item)) != nullptr || ![item isEnabled]);
        NSArray* shown = [NSArray arrayWithArray:[menu itemArray]];
        mirror.menuClosed(App::kStatusMenuId);
        if (edits.upTo(1) == 0) { // opens again before the job runs
            mirror.menuOpened(App::kStatusMenuId);
            mirror.applyDeferredLayouts();
            mirror.menuClosed(App::kStatusMenuId);
        }
        ASSERT_TRUE([[menu itemArray] isEqual:shown]);
        edits.upTo(1) == 0 ? mirror.applyDeferredLayouts() : mirror.menuNeedsUpdate(App::kStatusMenuId);
        ASSERT_EQ(difference(menu, takeSnapshot(model)), "") << "after it closed";
    }
    EXPECT_GE(maximum, 10U);
}

TEST(MenuTree, ShowsTheNewSubmenuOfAnItemThatIsAddedAgainWhileItIsOpen)
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

TEST(Quit, TerminatesTheApplicationAfterTheActionThatRequestedIt)
{
    LoopingFrontEnd frontEnd;
    [NSApp setDelegate:(id)[KestTerminationDelegate class]];
    frontEnd.quit();
    EXPECT_EQ(terminationRequests, 0);
    EXPECT_TRUE(eventually([&] { return runLoop(), terminationRequests == 1; }));
    [NSApp setDelegate:nil];
}

TEST(Jobs, RunInOrderAlsoWhileAMenuOrAPanelIsOpenAndAfterOneThatThrows)
{
    for (NSString* mode : {NSDefaultRunLoopMode, NSEventTrackingRunLoopMode, NSModalPanelRunLoopMode}) {
        LoopingFrontEnd frontEnd;
        std::vector<int> done;
        captureErrors();
        frontEnd.post([mode] { throw std::runtime_error(text(mode)); });
        std::thread([&] {
            for (int i = 0; i < 3; ++i)
                frontEnd.post([&done, i] { done.push_back(i); });
        }).join();
        EXPECT_TRUE(eventually([&] { return runLoop(mode), done.size() == 3; })) << text(mode);
        EXPECT_EQ(done, (std::vector{0, 1, 2}));
        EXPECT_THAT(capturedErrors(), HasSubstr("a job " + text(mode)));
    }
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
    captureErrors();
    workspace.log("Uninstall failed to launch");
    EXPECT_THAT(capturedErrors(), HasSubstr("Uninstall failed to launch\n"));
    chmod(program.c_str(), 0755);
    EXPECT_TRUE(workspace.run(program, {"unload", "/Library/a b"}));
    EXPECT_TRUE(eventually([&] { return readFile(folder / "output") == "unload /Library/a b\n"; }));
}

TEST(Workspace, ShowsTheAboutPanelAndNeedsNoFileViewer)
{
    AppKit::AppKitWorkspace workspace;
    workspace.selectFile("/");
    const auto before = [[NSApp windows] count];
    workspace.showAboutPanel(App::about());
    EXPECT_GT([[NSApp windows] count], before);
}

} // namespace
} // namespace Kest::Test
