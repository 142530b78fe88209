// The full-screen menu without a terminal: what is seen, and what keys ask for.
#include "platform/terminal/MenuScreen.h"

#include "tests/platform/terminal/SampleMenu.h"

#include <gmock/gmock.h>

#include <clocale>
#include <cstdio>

namespace {

using namespace Kest::Test;
using namespace Kest::Terminal;
using Kest::App::ItemId;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

constexpr Glyphs kAscii{false};

class MenuScreenTest : public testing::Test {
protected:
    MenuScreenTest()
    {
        std::setlocale(LC_CTYPE, "C.UTF-8");
        screen.show(sampleMenu(), 0);
        screen.lines(kSmallest);
    }
    Request press(Key key) { return screen.press({.key = key}); }
    Request type(const std::string& text)
    {
        Request last;
        for (const char letter : text)
            last = screen.press({.key = Key::character, .text = {letter}});
        return last;
    }
    Request click(int line) { return screen.press({.key = Key::click, .line = line}); }
    std::string line(int number, Size size = kSmallest)
    {
        return screen.lines(size).at(static_cast<std::size_t>(number)).text;
    }

    MenuScreen screen{kAscii};
};

TEST_F(MenuScreenTest, ShowsTheOpenMenuBetweenItsTitleAndWhatIsKnown)
{
    screen.note("bus 0 : \x1B[2J");
    EXPECT_EQ(type("jl").opened, std::vector<ItemId>{3});
    std::vector<std::string> texts;
    for (const auto& line : screen.lines(kSmallest))
        texts.push_back(line.text);
    EXPECT_THAT(texts, ElementsAre("Kest Settings > Buses                   ",
                                   "  ( ) Main Bus                          ",
                                   "> (x) Dialog                            ",
                                   "  ( ) Music                             ", std::string(40, ' '),
                                   std::string(40, ' '), "bus 0 : ?[2J                            ",
                                   "no K3DHost, 3 buses, no ~ ? keys  q quit"));
}

TEST_F(MenuScreenTest, ShowsWhatWasNotSavedAndWhyIn80Columns)
{
    screen.note("2026-03-01 14:05:09.004211 <ERRO> settings not saved (No space left on device): Speaker "
                "Configuration; in effect until the agent ends; /home/anna/Kest-Settings.xml\n");
    EXPECT_THAT(line(6, {8, 80}),
                testing::StartsWith("14:05:09 settings not saved (No space left on device): "
                                    "Speaker Configuration"));
    screen.note("bus 0 : Main Bus\n \n\n"); // the last line that is not blank
    EXPECT_THAT(line(6), testing::StartsWith("bus 0 : Main Bus "));
    screen.note("wrong ");
    screen.note("architecture"); // not ended
    EXPECT_THAT(line(6), testing::StartsWith("wrong architecture "));
}

TEST_F(MenuScreenTest, AChoiceNamesTheItemAndOpensItsMenuAnew)
{
    type("jlj");
    for (const auto& request : {press(Key::enter), type(" "), click(3)}) {
        EXPECT_EQ(request.chosen, 6);
        EXPECT_EQ(request.opened, std::vector<ItemId>{3});
    }
}

TEST_F(MenuScreenTest, ClicksBesideItemsAskForNothing)
{
    for (const int line : {0, 2, 5, 7, -1, 100}) {
        EXPECT_EQ(click(line).chosen, 0) << line;
        EXPECT_TRUE(click(line).opened.empty()) << line;
    }
    EXPECT_EQ(click(3).opened, std::vector<ItemId>{3});
}

TEST_F(MenuScreenTest, EscAndLeftGoBackAndOnlyQQuits)
{
    for (const auto back : {Key::escape, Key::left}) {
        type("jl");
        EXPECT_THAT(line(0), HasSubstr("> Buses"));
        EXPECT_FALSE(press(back).quit);
        EXPECT_FALSE(press(back).quit);
        EXPECT_THAT(line(0), Not(HasSubstr(">")));
        press(Key::home);
    }
    EXPECT_TRUE(type("q").quit);
}

TEST_F(MenuScreenTest, FindsItemsAtAnyDepthByAPartOfTheirTitle)
{
    EXPECT_EQ(type("/").opened, std::vector<ItemId>{3})
        << "submenus made up on opening are searched as they are";
    type("qDIAL");
    EXPECT_THAT(line(1), StartsWith("  no item"));
    for (int i = 0; i < 5; ++i)
        press(Key::backspace);
    type("DIAL");
    EXPECT_THAT(line(1), StartsWith("> Buses > Dialog"));
    EXPECT_THAT(line(2), StartsWith("   ")) << "the hidden one is none";
    EXPECT_EQ(press(Key::enter).opened, std::vector<ItemId>{3});
    EXPECT_THAT(line(2), StartsWith("> (x) Dialog"));
}

TEST_F(MenuScreenTest, TheMatchThatIsSelectedStaysSoWhenTheMenuChanges)
{
    type("/u");
    press(Key::down);
    press(Key::down);
    EXPECT_THAT(line(3), StartsWith("> Buses > Music"));
    auto menu = sampleMenu();
    menu.items[2].items.insert(menu.items[2].items.begin(), bus(40, "Studio"));
    screen.show(menu, 1);
    EXPECT_THAT(line(4), StartsWith("> Buses > Music"));
    press(Key::escape);
    EXPECT_THAT(line(0), StartsWith("Kest Settings"));
}

TEST_F(MenuScreenTest, TellsWhenTheListOfBusesWasAnotherLast)
{
    setenv("TZ", "UTC", 1);
    screen.show(sampleMenu(), 3600);
    EXPECT_THAT(line(7, {8, 60}), StartsWith("no K3DHost, 3 buses, no change so far"));
    auto menu = sampleMenu();
    menu.items[2].items.resize(1);
    screen.show(menu, 3661);
    screen.show(menu, 4000);
    EXPECT_THAT(line(7, {8, 60}), StartsWith("no K3DHost, 1 bus, changed 01:01:01"));
}

TEST_F(MenuScreenTest, SaysThatTheWindowIsTooSmallInTheSpaceThereIs)
{
    for (const Size size : {Size{7, 80}, Size{24, 39}, Size{1, 10}, Size{2, 1}}) {
        const auto lines = screen.lines(size);
        EXPECT_EQ(static_cast<int>(lines.size()), size.lines);
        EXPECT_THAT(lines.front().text, StartsWith(size.columns > 9 ? "Window to" : "~"));
    }
}

TEST(RowText, NamesInWordsWhatColoursTell)
{
    const auto red = leaf(1, {.title = "Studio", .mark = Kest::App::Mark::radio, .red = true});
    EXPECT_EQ(rowText(red, false, 40, kAscii), "  ( ) Studio (not available)            ");
    const auto greyed = leaf(1, {.title = "Clear", .enabled = false});
    EXPECT_EQ(rowText(greyed, true, 20, kAscii), "> Clear (greyed)    ");
}

TEST(RowText, AnEncodingHasItsProgressBehindItsName)
{
    const auto row = [](const std::string& name, std::optional<int> percent) {
        auto item = submenu(1, "", {});
        item.properties =
            item.properties.with(&Kest::App::ItemProperties::view, Kest::App::EntryView{name, percent});
        return rowText(item, false, 40, kAscii);
    };
    EXPECT_EQ(row("Film", 50), "  Film             [######......]  50% >");
    EXPECT_EQ(row("Film", {}), "  Film                                 >");
    EXPECT_EQ(row(std::string(50, 'x'), 250), "  xxxxxxxxxxxxxxx~ [############] 100% >");
}

TEST(Cells, WideCharactersTakeTwoAndAreNeverCutInHalf)
{
    std::setlocale(LC_CTYPE, "C.UTF-8");
    const Glyphs unicode;
    EXPECT_EQ(cells("e\u0301\u6F22"), 3);
    EXPECT_EQ(fitted("\u6F22\u5B57\u6F22", 5, unicode), "\u6F22\u5B57\u2026");
    EXPECT_EQ(fitted("\u6F22\u5B57\u6F22", 4, unicode), "\u6F22\u2026 ");
    EXPECT_EQ(drawable("\u6F22\u0085a\xFF", unicode), "\u6F22?a\uFFFD");
    EXPECT_EQ(drawable("Ch\u00E8ur", kAscii), "Ch?ur");
}

} // namespace
