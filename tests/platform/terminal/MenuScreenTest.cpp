#include "app/ItemPath.h"
#include "platform/terminal/Screen.h"

#include <gmock/gmock.h>

#include <clocale>

namespace {

using namespace Kest::Terminal;
using Kest::App::ItemId;
using Kest::App::ItemProperties;
using Kest::App::ItemSnapshot;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

constexpr Glyphs kAscii{false};

using Items = std::vector<ItemSnapshot>;

ItemSnapshot leaf(ItemId id, ItemProperties properties) { return {id, std::move(properties), false, {}}; }

ItemSnapshot plainLeaf(ItemId id, const std::string& title)
{
    return leaf(id, {.title = title, .action = Kest::App::Action::restartService});
}

ItemSnapshot bus(ItemId id, const std::string& title, bool on = false)
{
    return leaf(id, {.title = title,
                     .action = Kest::App::Action::setDefaultKestBus,
                     .mark = Kest::App::Mark::radio,
                     .on = on});
}

ItemSnapshot statusMenu(Items items) { return {.hasSubmenu = true, .items = std::move(items)}; }

// Restart (1), a separator (2), Buses (3) with Main Bus (4), Dialog (5, on) and Music (6), a hidden submenu
// (7) with Hidden Dialog (8), About (9).
ItemSnapshot sampleMenu()
{
    const Items buses = {bus(4, "Main Bus"), bus(5, "Dialog", true), bus(6, "Music")};
    return statusMenu({plainLeaf(1, "Restart"),
                       leaf(2, {.separator = true}),
                       {3, ItemProperties{.title = "Buses"}, true, buses},
                       {7, ItemProperties{.hidden = true}, true, {plainLeaf(8, "Hidden Dialog")}},
                       plainLeaf(9, "About")});
}

ItemSnapshot longMenu()
{
    Items items;
    for (ItemId id = 1; id <= 20; ++id)
        items.push_back(plainLeaf(id, "Item " + std::to_string(id)));
    return statusMenu(items);
}

class MenuScreenTest : public testing::Test {
protected:
    MenuScreenTest()
    {
        std::setlocale(LC_CTYPE, "C.UTF-8");
        begin();
    }
    void begin()
    {
        screen.emplace(kAscii).show(sampleMenu(), 0);
        screen->lines(kMinSize);
    }
    /// Enter is "\n", Esc "\x1B", backspace "\x7F".
    Command type(const std::string& keys)
    {
        Command last;
        for (const char key : keys)
            last = screen->press(inputOfCharacter(static_cast<std::wint_t>(key)));
        return last;
    }
    /// Checks the command of the last of the keys, and the beginning of a line after it.
    void expect(const std::string& keys, ItemId chosen, const std::vector<ItemId>& opened, int number,
                const char* text)
    {
        begin();
        const auto command = type(keys);
        EXPECT_EQ(command.chosen, chosen) << keys;
        EXPECT_EQ(command.opened, opened) << keys;
        EXPECT_EQ(command.quit, keys == "q") << keys;
        EXPECT_THAT(line(number), StartsWith(text)) << keys;
    }
    std::string line(int number, Size size = kMinSize)
    {
        return screen->lines(size).at(static_cast<std::size_t>(number)).text;
    }

    std::optional<MenuScreen> screen;
};

TEST_F(MenuScreenTest, KeysChooseOpenSearchAndQuit)
{
    expect("jl", 0, {3}, 0, "Kest Settings > Buses  ");
    expect("jlj\n", 6, {3}, 3, "> ( ) Music");
    expect("jlj ", 6, {3}, 3, "> ( ) Music");
    expect("jl\x1B", 0, {}, 0, "Kest Settings  ");
    expect("jljh\x1B\x1B", 0, {}, 3, "> Buses");
    expect("/", 0, {3}, 6, "/_"); // what is filled on opening is filled for the search
    expect("/qDIAL", 0, {}, 1, "  no match");
    expect("/qDIAL\x7F\x7F\x7F\x7F", 0, {}, 6, "/q_");
    expect("/DIAL", 0, {}, 1, "> Buses > Dialog");
    expect("/DIAL", 0, {}, 2, "   "); // not the hidden one
    expect("/DIAL\n", 0, {3}, 2, "> (x) Dialog");
    expect("kjjj", 0, {}, 4, "> About"); // past a separator and a hidden item, and no further
    expect("jjk", 0, {}, 3, "> Buses");
    expect("?", 0, {}, 0, "Keys");
    expect("q", 0, {}, 0, "Kest Settings");
}

TEST_F(MenuScreenTest, ShowsTheLastPrintedLineThatIsNotBlank)
{
    screen->addPrintedText(
        "2026-03-01 14:05:09.004211 <ERRO> settings not saved (No space left on device): Speaker\n");
    EXPECT_THAT(line(6, {8, 80}), StartsWith("14:05:09 settings not saved (No space left on device): Sp"));
    screen->addPrintedText("bus 0 : Main Bus\n \n\n");
    EXPECT_THAT(line(6), StartsWith("bus 0 : Main Bus "));
    screen->addPrintedText("wrong ");
    screen->addPrintedText("architecture");
    EXPECT_THAT(line(6), StartsWith("wrong architecture "));
}

TEST_F(MenuScreenTest, ClicksChooseTheItemOfTheirLineOnly)
{
    for (const int line : {0, 2, 5, 7, -1, 100})
        EXPECT_TRUE(screen->press({.key = Key::click, .line = line}).opened.empty()) << line;
    EXPECT_EQ(screen->press({.key = Key::click, .line = 3}).opened, std::vector<ItemId>{3});

    screen->show(longMenu(), 0);
    screen->press({.key = Key::end});
    EXPECT_THAT(line(1), StartsWith("  Item 16 "));
    EXPECT_EQ(screen->press({.key = Key::click, .line = 1}).chosen, 16);
}

TEST_F(MenuScreenTest, SelectedMatchStaysSelectedWhenTheMenuChanges)
{
    type("/u");
    screen->press({.key = Key::down});
    screen->press({.key = Key::down});
    EXPECT_THAT(line(3), StartsWith("> Buses > Music"));
    auto menu = sampleMenu();
    menu.items[2].items.insert(menu.items[2].items.begin(), bus(40, "Studio"));
    screen->show(menu, 1);
    EXPECT_THAT(line(4), StartsWith("> Buses > Music"));
}

TEST_F(MenuScreenTest, ShowsWhenTheListOfBusesHasChanged)
{
    setenv("TZ", "UTC", 1);
    EXPECT_THAT(line(7, {8, 60}), StartsWith("no K3DHost, 3 buses, no change so far"));
    auto menu = sampleMenu();
    menu.items[2].items.resize(1);
    screen->show(menu, 3661);
    screen->show(menu, 4000);
    EXPECT_THAT(line(7, {8, 60}), StartsWith("no K3DHost, 1 bus, changed 01:01:01"));
}

TEST(Navigator, KeepsTheSelectedItemOrSelectsTheNearestOne)
{
    Navigator navigator;
    auto menu = sampleMenu();
    auto& buses = menu.items[2];
    const auto before = buses.items;
    const auto selectedIn = [&](const Items& items) {
        buses.items = items;
        navigator.show(menu);
        return navigator.selected();
    };
    navigator.show(menu);
    navigator.goTo(6);
    EXPECT_EQ(selectedIn({bus(20, "A"), bus(21, "B"), before[0], before[1], before[2]}), 6);
    navigator.moveBy(-1);
    EXPECT_EQ(selectedIn({before[0], before[1]}), 5);
    EXPECT_EQ(selectedIn({before[0]}), 4);
    EXPECT_EQ(selectedIn({}), Kest::App::kStatusMenuId);
    EXPECT_EQ(selectedIn({bus(30, "New")}), 30);
    buses.properties = buses.properties.with(&ItemProperties::hidden, true);
    navigator.show(menu);
    EXPECT_EQ(navigator.selected(), 9) << "the nearest row of the menu above";
    navigator.goTo(30);
    navigator.enter(3);
    EXPECT_EQ(navigator.menu().id, 0) << "a hidden submenu";
}

TEST(Navigator, ScrollsOnlyAsFarAsTheSelectedRowRequires)
{
    Navigator navigator;
    navigator.show(longMenu());
    std::vector<int> tops;
    for (const int step : {4, 1, 3, -4, -1, 100}) {
        navigator.moveBy(step);
        tops.push_back(navigator.firstRow(5));
    }
    EXPECT_THAT(tops, ElementsAre(0, 1, 4, 4, 3, 15));
    EXPECT_EQ(navigator.firstRow(30), 0) << "a larger window is filled";
}

TEST(ItemPath, FindsItemsOfOneTitleByTheirNumberOnly)
{
    const auto menu = statusMenu(
        {plainLeaf(1, "Film"), plainLeaf(2, "Film"), plainLeaf(3, "Film #2"), plainLeaf(4, "Other")});
    EXPECT_THAT(findByPath(menu, "Film").error, HasSubstr("several items \"Film\" in the menu: add #1"));
    EXPECT_EQ(findByPath(menu, "Film #1").item, &menu.items[0]);
    EXPECT_EQ(findByPath(menu, "Film #2").item, nullptr) << "ambiguous";
    EXPECT_EQ(findByPath(menu, "Film #3").error, "no item \"Film #3\" in the menu");
}

TEST_F(MenuScreenTest, RowsShowStateAndProgressInExactlyTheirWidth)
{
    const auto row = [](ItemProperties item) { return rowText(leaf(1, std::move(item)), false, 40, kAscii); };
    EXPECT_EQ(row({.title = "Ch\u00E8ur", .mark = Kest::App::Mark::radio, .enabled = false, .red = true}),
              "  ( ) Ch?ur (not available) (greyed)    ");
    EXPECT_EQ(row({.encoding = {{"Film", 50}}}), "  Film             [######......]  50%  ");
    EXPECT_EQ(row({.encoding = {{"Film", {}}}}), "  Film                                  ");
    EXPECT_EQ(row({.encoding = {{std::string(50, 'x'), 250}}}), "  xxxxxxxxxxxxxxx~ [############] 100%  ");

    const Glyphs unicode;
    EXPECT_EQ(cellWidth("e\u0301\u6F22"), 3);
    EXPECT_EQ(fitToWidth("\u6F22\u5B57\u6F22", 4, unicode), "\u6F22\u2026 ")
        << "half a character is left out";
    EXPECT_EQ(drawable("\u6F22\u0085a\xFF", unicode), "\u6F22?a\uFFFD");
}

} // namespace
