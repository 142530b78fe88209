// AppKit's menu is the model's, item by item, whatever happens.
#import "platform/appkit/EncodingRow.h"
#include "tests/platform/appkit/AppKitAgent.h"
#include "tests/support/RandomHand.h"

#include <objc/runtime.h>

// Counts the changes of any menu's items.
@interface KestChangeCounter : NSObject {
@public
    int changes;
}
- (void)itemsChanged:(NSNotification*)notification;
@end

@implementation KestChangeCounter
- (void)itemsChanged:(NSNotification*)notification
{
    ++changes;
}
@end

namespace Kest::Test {
namespace {

struct Seen {
    std::string title, view;
    NSInteger tag = 0;
    bool on = false, enabled = false, hidden = false, red = false, acts = false, hasSubmenu = false;
};

std::string line(const Seen& is)
{
    return is.title + " " + std::to_string(is.tag) + (is.on ? " on" : "") + (is.enabled ? "" : " greyed") +
           (is.hidden ? " hidden" : "") + (is.red ? " red" : "") + (is.acts ? " acts" : "") +
           (is.view.empty() ? "" : " [" + is.view + "]") + (is.hasSubmenu ? " >" : "");
}

std::string text(NSString* string) { return [string UTF8String]; }

// Red as it is to be: the whole title, in the system's font at its size.
bool isRed(NSMenuItem* item)
{
    NSAttributedString* title = [item attributedTitle];
    if (title == nil)
        return false;
    NSRange all;
    NSDictionary* look = [title attributesAtIndex:0 effectiveRange:&all];
    EXPECT_EQ(text([title string]), text([item title]));
    EXPECT_EQ(all.length, [title length]);
    EXPECT_TRUE([[look objectForKey:NSForegroundColorAttributeName] isEqual:[NSColor redColor]]);
    EXPECT_TRUE(
        [[look objectForKey:NSFontAttributeName] isEqual:[NSFont systemFontOfSize:[NSFont systemFontSize]]]);
    return true;
}

std::string viewOf(NSMenuItem* item)
{
    auto* row = (KestEncodingRow*)[(id<KestMenuItemAbilities>)item view];
    return row == nil ? ""
                      : text([[row nameLabel] stringValue]) + "," + text([[row percentageLabel] stringValue]);
}

} // namespace

std::vector<std::string> lines(const App::ItemSnapshot& menu, const std::string& above)
{
    std::vector<std::string> all;
    for (const auto& item : menu.items) {
        const auto& is = *item.properties;
        if (is.hidden && !AppKit::itemsCanHide())
            continue;
        const auto title = is.view && !AppKit::itemsCanHaveViews() ? plainLabel(is) : is.title;
        const auto view =
            is.view && AppKit::itemsCanHaveViews() ? is.view->title() + "," + is.view->percentText() : "";
        all.push_back(above + (is.separator ? "-"
                                            : line({title, view, is.tag, is.on, is.enabled, is.hidden, is.red,
                                                    is.action != App::Action::none, item.hasSubmenu})));
        const auto below = lines(item, above + title + "/");
        all.insert(all.end(), below.begin(), below.end());
    }
    return all;
}

std::vector<std::string> lines(NSMenu* menu, const std::string& above)
{
    EXPECT_FALSE([menu autoenablesItems]);
    std::vector<std::string> all;
    for (NSMenuItem* item in [menu itemArray]) {
        const auto title = text([item title]);
        const bool hidden = AppKit::itemsCanHide() && [(id<KestMenuItemAbilities>)item isHidden];
        const auto view = AppKit::itemsCanHaveViews() ? viewOf(item) : std::string();
        const bool acts = sel_isEqual([item action], @selector(chooseItem:));
        all.push_back(above + ([item isSeparatorItem]
                                   ? "-"
                                   : line({title, view, [item tag], [item state] == NSControlStateValueOn,
                                           static_cast<bool>([item isEnabled]), hidden, isRed(item), acts,
                                           static_cast<bool>([item hasSubmenu])})));
        const auto below = lines([item submenu], above + title + "/");
        all.insert(all.end(), below.begin(), below.end());
    }
    return all;
}

namespace {

using testing::Contains;
using testing::Not;

TEST(MenuTree, IsTheModelsAfterStartUpAndEachKindOfChange)
{
    AppKitAgent agent({{"Facility", "Gone"}, {"SoloMode", "1"}});
    std::filesystem::create_directories(agent.place.paths.facilitiesFolder + "/Studio");
    auto& host = agent.place.startHost();
    agent.start();
    const auto same = [&] { EXPECT_EQ(agent.menuLines(), agent.modelLines()); };
    same();
    EXPECT_THAT(agent.menuLines(), Contains("Solo Mode/Exclusive (XOR) 0 on acts"));
    EXPECT_EQ([agent.item("Solo Mode") menu], agent.frontEnd.statusMenu());

    agent.open("Monitoring Facility");
    same();
    EXPECT_THAT(agent.menuLines(), Contains("Monitoring Facility/Gone 0 on red acts"));
    agent.close("Monitoring Facility");
    agent.choose("Monitoring Facility/Studio");
    agent.open("Monitoring Facility"); // red is gone, and the item with it
    same();
    EXPECT_THAT(agent.menuLines(), Not(Contains(testing::HasSubstr("red"))));

    host.putBus(5, "bus-5", "Dialog");
    EXPECT_TRUE(agent.pumpUntil([&] { return agent.item("Default Bus/Dialog") != nil; }));
    same();
    EXPECT_TRUE(agent.report(4711, "/Out/Film/Film_Mix_Prt.wav", 42));
    same();
    agent.choose("DAW Link Control"); // another item comes out of hiding
    same();
    agent.delegate.receivedMsgFromBackend(100, 4711, "Film_Mix_Prt"); // no abort any more
    same();
    agent.choose("Encoding History/Clear History");
    same();
}

TEST(MenuTree, IsTheModelsAfterAThousandRandomChanges)
{
    App::MenuModel model;
    RandomHand hand{model};
    AppKit::MenuMirror mirror(model, "Menu", nil);
    std::size_t most = 0;
    for (int i = 0; i < 1000; ++i) {
        hand.change();
        mirror.show(model.takeChanges());
        const auto now = takeSnapshot(model);
        ASSERT_EQ(lines(mirror.statusMenu()), lines(now)) << "change " << i;
        most = std::max(most, lines(now).size());
    }
    EXPECT_GE(most, 20U) << "the changes were of some size";
}

TEST(MenuTree, KeepsItsItemsInPlaceWhileItIsOpen)
{
    App::MenuModel model;
    RandomHand hand{model};
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
        NSArray* shown = [NSArray arrayWithArray:[menu itemArray]];
        mirror.menuClosed(App::kStatusMenuId);
        ASSERT_TRUE([[menu itemArray] isEqual:shown]) << "the action is still to come";
        if (hand.upTo(1) == 0) { // opens again before the job runs
            mirror.menuOpened(App::kStatusMenuId);
            mirror.applyDeferredShapes();
            ASSERT_TRUE([[menu itemArray] isEqual:shown]);
            mirror.menuClosed(App::kStatusMenuId);
        }
        hand.upTo(1) == 0 ? mirror.applyDeferredShapes() : mirror.menuNeedsUpdate(App::kStatusMenuId);
        ASSERT_EQ(lines(menu), lines(takeSnapshot(model)));
    }
    EXPECT_GE(most, 10U) << "there was something to keep";
}

TEST(OpenMenu, ChangesItemsNeitherWhenItHasOpenedNorWhenItHasClosed)
{
    AppKitAgent agent;
    agent.start();
    NSMenu* menu = agent.submenu("Monitoring Facility");
    KestChangeCounter* counter = [[[KestChangeCounter alloc] init] autorelease];
    for (NSString *name in
         [NSArray arrayWithObjects:NSMenuDidAddItemNotification, NSMenuDidChangeItemNotification,
                                   NSMenuDidRemoveItemNotification, nil])
        [[NSNotificationCenter defaultCenter] addObserver:counter
                                                 selector:@selector(itemsChanged:)
                                                     name:name
                                                   object:nil];
    const auto changesIn = [&](void (*message)(NSMenu*)) {
        counter->changes = 0;
        message(menu);
        return counter->changes;
    };
    std::filesystem::create_directories(agent.place.paths.facilitiesFolder + "/Studio");
    EXPECT_GT(changesIn(AppKitAgent::needsUpdate), 0) << "the list is read";
    EXPECT_EQ(agent.menuLines(), agent.modelLines());
    EXPECT_EQ(changesIn(AppKitAgent::willOpen), 0);

    std::filesystem::rename(agent.place.paths.facilitiesFolder + "/Studio",
                            agent.place.paths.facilitiesFolder + "/Annex");
    agent.delegate.menuWillOpen(agent.at("Monitoring Facility").id());
    EXPECT_NE(agent.menuLines(), agent.modelLines()) << "the open menu keeps its items";
    EXPECT_EQ(changesIn(AppKitAgent::didClose), 0);
    EXPECT_GT(changesIn([](NSMenu*) { runLoop(); }), 0);
    EXPECT_EQ(agent.menuLines(), agent.modelLines());
    [[NSNotificationCenter defaultCenter] removeObserver:counter];
}

TEST(OpenMenu, GreysWhatWentAndShowsWhatCame)
{
    AppKitAgent agent;
    agent.start();
    const std::string history = "Encoding History";
    agent.delegate.receivedMsgFromBackend(10, 4711, "Film");
    agent.delegate.receivedMsgFromBackend(10, 4712, "Other");
    agent.open(history);
    NSMenu* menu = [agent.item(history) submenu];
    NSMenuItem* film = [menu itemAtIndex:2];
    agent.delegate.receivedMsgFromBackend(20, 4711, "Film");
    EXPECT_EQ([menu itemAtIndex:2], film);
    EXPECT_EQ(agent.menuLines(), agent.modelLines()) << "progress shows at once";

    agent.delegate.choose(agent.at(history + "/Clear History").id());
    agent.delegate.receivedMsgFromBackend(30, 4713, "Third");
    EXPECT_EQ([menu numberOfItems], 5);
    EXPECT_EQ([menu itemAtIndex:2], film);
    EXPECT_FALSE([film isEnabled]);
    AppKitAgent::choose((NSMenuItem*)[[film submenu] itemWithTag:App::kAbortTag]);
    EXPECT_THAT(agent.workspace.asked, testing::ElementsAre()) << "it is no more";
    agent.close(history);
    EXPECT_EQ(agent.menuLines(), agent.modelLines());
    EXPECT_EQ([menu numberOfItems], 3);
}

TEST(OpenMenu, ShowsTheSubmenuThatAnItemHasWhenItIsBack)
{
    App::MenuModel model;
    AppKit::MenuMirror mirror(model, "Menu", nil);
    const auto add = [](App::Menu& menu, const char* title) -> App::MenuItem& {
        return menu.addItem(std::make_unique<App::MenuItem>(App::ItemProperties{.title = title, .view = {}}));
    };
    const auto show = [&](const char* below) {
        auto& item = add(model.statusMenu(), "Submenu");
        item.setSubmenu(std::make_unique<App::Menu>(model));
        add(*item.submenu(), below);
        mirror.show(model.takeChanges());
    };
    show("Before");
    mirror.menuOpened(App::kStatusMenuId);
    model.statusMenu().removeAllItems();
    mirror.show(model.takeChanges());
    show("After");
    EXPECT_EQ(lines(mirror.statusMenu()), lines(takeSnapshot(model)));
}

} // namespace
} // namespace Kest::Test
