// The menu in words: its lines, the lines for its changes, the paths of its items, and a whole dialogue.
#include "platform/terminal/TextMenu.h"

#include "platform/terminal/MenuPath.h"
#include "platform/terminal/TextFrontEnd.h"
#include "tests/app/Agent.h"

namespace {

using namespace Kest::App;
using namespace Kest::Terminal;
using testing::ElementsAre;
using Items = std::vector<ItemSnapshot>;

/// A menu of a leaf, a submenu, an encoding and things that are not to be seen.
class TextMenu : public testing::Test {
protected:
    ItemSnapshot item(ItemProperties properties, const Items& below = {})
    {
        return {++lastId, std::move(properties), !below.empty(), below};
    }
    /// What is printed of a change.
    template <typename Change>
    std::vector<std::string> after(Change change)
    {
        const auto before = menu;
        change();
        return changeLines(before, menu);
    }
    /// An item's id, or the error.
    std::string find(const char* path)
    {
        const auto [found, error] = findByPath(menu, path);
        return found == nullptr ? error : std::to_string(found->id);
    }

    ItemId lastId = kStatusMenuId;
    Items inBuses = {item({.title = "A", .mark = Mark::radio, .on = true, .view = {}}),      // 1
                     item({.title = {}, .separator = true, .view = {}}),                     // 2
                     item({.title = "B", .view = {}}),                                       // 3
                     item({.title = "B > C", .mark = Mark::radio, .red = true, .view = {}}), // 4
                     item({.title = "A", .view = {}})};                                      // 5
    Items inSecret = {item({.title = "Below", .view = {}})};                                 // 6
    ItemSnapshot menu{kStatusMenuId,
                      {},
                      true,
                      {item({.title = "Link", .mark = Mark::check, .enabled = false, .view = {}}),   // 7
                       item({.title = "Buses", .view = {}}, inBuses),                                // 8
                       item({.title = "Secret", .hidden = true, .view = {}}, inSecret),              // 9
                       item({.title = "first title", .tag = 7, .view = EntryView{"Film", "42%"}})}}; // 10
    ItemProperties& link = menu.items[0].properties;
    Items& buses = menu.items[1].items;
    ItemProperties& film = menu.items[3].properties;
};

TEST_F(TextMenu, HasALineForEachItemThatIsSeen)
{
    EXPECT_THAT(menuLines(menu),
                ElementsAre("  [ ] Link (greyed)", "  Buses", "    (x) A", "    --------", "    B",
                            "    ( ) B > C (not available)", "    A", "  Film  42%"));
}

TEST_F(TextMenu, LetsNoControlCharacterThrough)
{
    EXPECT_EQ(printable("a\x1B[31m\n\t\x7F z"), "a?[31m??? z");
    EXPECT_EQ(printable("\u009B2J\u0085é\u00A0€😀"), "?2J?é\u00A0€😀");
    EXPECT_EQ(printable("\x9B"
                        "2J \xC2"),
              "\uFFFD"
              "2J \uFFFD")
        << "bytes that are no text, to a terminal of 8 bits";
    menu.items = {item({.title = "\x1B]0;x", .view = {}}),
                  item({.title = {}, .view = EntryView{"\r\n", "1%"}})};
    EXPECT_THAT(menuLines(menu), ElementsAre("  ?]0;x", "  ??  1%"));
    EXPECT_THAT(changeLines({}, menu), ElementsAre("added ?]0;x", "added ??: 1%"));
}

TEST_F(TextMenu, HasALineForEachKindOfChange)
{
    EXPECT_THAT(after([] {}), ElementsAre());
    EXPECT_THAT(after([&] { buses[0].properties.on = false; }), ElementsAre("changed Buses > A: off"));
    EXPECT_THAT(after([&] { link.on = link.enabled = true; }), ElementsAre("changed Link: on, available"));
    EXPECT_THAT(after([&] { link.enabled = false; }), ElementsAre("changed Link: greyed"));
    EXPECT_THAT(after([&] { buses[3].properties.red = false; }),
                ElementsAre("changed Buses > B > C: available again"));
    EXPECT_THAT(after([&] { link.hidden = true; }), ElementsAre("changed Link: hidden"));
    EXPECT_THAT(after([&] { link.on = false; }), ElementsAre()) << "while it is hidden";
    EXPECT_THAT(after([&] { link.hidden = false; }), ElementsAre("changed Link: shown"));
    EXPECT_THAT(after([&] { menu.items[2].items.clear(); }), ElementsAre()) << "below a hidden one";
    EXPECT_THAT(after([&] { film.view->percentage = "43%"; }), ElementsAre("changed Film: 43%"));
    EXPECT_THAT(after([&] {
                    film.view = {"Film - Failed", ""};
                }),
                ElementsAre(testing::StartsWith("changed Film - Failed")));
    EXPECT_THAT(
        after([&] {
            buses = {item({.title = "D", .on = true, .red = true, .view = {}}),
                     buses[2],
                     item({.title = {}, .view = EntryView{"Song", "5%"}}),
                     buses[3],
                     buses[4],
                     item({.title = "unseen", .hidden = true, .view = {}})};
        }),
        ElementsAre("removed Buses > A", "added Buses > D: on, not available", "added Buses > Song: 5%"));
}

TEST_F(TextMenu, FindsAnItemByItsPathOrSaysWhatIsMissingWhere)
{
    constexpr std::pair<const char*, const char*> kPaths[] = {
        {"Buses", "8"},
        {"Buses > A", "1"},
        {"Buses > A #2", "5"},
        {"Buses > B", "3"},
        {"Buses > B > C", "4"},
        {"Film", "10"},
        {"", "no item \"\" in the menu"},
        {"Bus", "no item \"Bus\" in the menu"},
        {"first title", "no item \"first title\" in the menu"},
        {"Secret > Below", "no item \"Secret\" in the menu"},
        {"Buses > X > Y", "no item \"X\" in Buses"},
        {"Buses > A > Y", "no item \"Y\" in Buses > A"},
        {"Buses > A #3", "no item \"A #3\" in Buses"},
    };
    for (const auto& [path, found] : kPaths)
        EXPECT_EQ(find(path), found);
}

TEST(TextFrontEnd, TakesChoicesAndTellsWhatChangesUntilItIsToldToQuit)
{
    Kest::Test::TestPlace place;
    Kest::Test::FakeWorkspace workspace;
    TextFrontEnd frontEnd;
    KestSettingsAppDelegate delegate(frontEnd, workspace, place.paths);
    delegate.awakeFromNib();
    const auto annex = place.paths.facilitiesFolder + "/Annex";
    workspace.whenRun = [&] { std::filesystem::create_directories(annex); }; // after the menu was printed
    Kest::Test::writeFile(
        place.folder / "script",
        "choose Restart Host Service\nchoose Solo Mode > Exclusive (XOR)\r\nchoose Solo Mode\n"
        "choose Encoding History > Clear History\nchoose \x1B[2J\n"
        "open Monitoring Facility\nopen DAW Link Control\nfrobnicate\n" +
            std::string(8192, 'x') + "quit\n\n  menu  \nquit\nfrobnicate\n");
    const int script = open((place.folder / "script").c_str(), O_RDONLY);
    dup2(script, STDIN_FILENO);
    close(script);
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    frontEnd.run(delegate);
    const auto printed = testing::internal::GetCapturedStdout();
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "\"Solo Mode\" is a submenu: open it, or choose one of its items\n"
              "\"Clear History\" is greyed\n"
              "no item \"?[2J\" in the menu\n"
              "\"DAW Link Control\" is not a submenu\n"
              "unknown command \"frobnicate\"; \"help\" lists what there is\n"
              "a line of more than 4096 bytes is no command\n");
    EXPECT_THAT(printed, testing::HasSubstr(
                             "\nchanged Solo Mode > Latch: off\nchanged Solo Mode > Exclusive (XOR): on\n"
                             "Monitoring Facility\n  ( ) Annex\n  (x) Standard-Surround (not available)\n"
                             "Kest Settings\n  Solo Mode\n    ( ) Latch\n    (x) Exclusive (XOR)\n"));
}

} // namespace
