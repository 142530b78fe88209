// Moving about in the menu, and where one is when it changes.
#include "platform/terminal/Navigator.h"

#include "tests/platform/terminal/SampleMenu.h"

#include <gmock/gmock.h>

namespace {

using namespace Kest::Test;
using Kest::App::ItemId;
using Kest::App::ItemSnapshot;
using Kest::Terminal::Navigator;

class NavigatorTest : public testing::Test {
protected:
    void SetUp() override { navigator.show(menu); }
    ItemId openMenu() const { return navigator.menu().id; }

    ItemSnapshot menu = sampleMenu();
    Items& buses = menu.items[2].items;
    Navigator navigator;
};

TEST_F(NavigatorTest, MovesOverSeparatorsAndHiddenItemsAndStopsAtTheEnds)
{
    std::vector<ItemId> visited{navigator.selected()};
    for (const int step : {-1, 1, 1, 1, -2, 100, -100}) {
        navigator.moveBy(step);
        visited.push_back(navigator.selected());
    }
    EXPECT_THAT(visited, testing::ElementsAre(1, 1, 3, 9, 9, 1, 9, 1));
}

TEST_F(NavigatorTest, EntersWhereSomethingIsOnAndComesBackToTheSubmenusRow)
{
    navigator.enter(9);
    navigator.enter(7);
    EXPECT_EQ(openMenu(), 0) << "no submenu, or none that is seen";
    navigator.enter(3);
    EXPECT_EQ(openMenu(), 3);
    EXPECT_EQ(navigator.selected(), 5);
    EXPECT_TRUE(navigator.leave());
    EXPECT_EQ(navigator.selected(), 3);
    EXPECT_FALSE(navigator.leave());
}

TEST_F(NavigatorTest, KeepsTheSelectedItemWhenRowsComeAndGoAboveIt)
{
    navigator.goTo(6);
    buses.insert(buses.begin(), {bus(20, "A"), bus(21, "B")});
    navigator.show(menu);
    EXPECT_EQ(navigator.selected(), 6);
    navigator.moveBy(-1);
    EXPECT_EQ(navigator.selected(), 5);
}

TEST_F(NavigatorTest, SelectsTheNearestRowWhenTheSelectedOneIsGone)
{
    navigator.goTo(6);
    buses.pop_back();
    navigator.show(menu);
    EXPECT_EQ(navigator.selected(), 5);
    hide(buses[1]);
    navigator.show(menu);
    EXPECT_EQ(navigator.selected(), 4);
    buses.clear();
    navigator.show(menu);
    EXPECT_EQ(navigator.selected(), Kest::App::kStatusMenuId);
    navigator.moveBy(1);
    buses = {bus(30, "New")};
    navigator.show(menu);
    EXPECT_EQ(navigator.selected(), 30);
}

TEST_F(NavigatorTest, LeavesASubmenuThatIsGone)
{
    navigator.goTo(5);
    hide(menu.items[2]);
    navigator.show(menu);
    EXPECT_EQ(openMenu(), 0);
    EXPECT_EQ(navigator.selected(), 9) << "which stands in its place";
    navigator.goTo(5);
    EXPECT_EQ(openMenu(), 0) << "not to be seen any more";
}

TEST_F(NavigatorTest, ScrollsOnlyAsFarAsItMust)
{
    menu.items.clear();
    for (ItemId id = 1; id <= 20; ++id)
        menu.items.push_back(plainLeaf(id, "item"));
    navigator.show(menu);
    std::vector<int> tops;
    for (const int step : {4, 1, 3, -4, -1, 100}) {
        navigator.moveBy(step);
        tops.push_back(navigator.firstRow(5));
    }
    EXPECT_THAT(tops, testing::ElementsAre(0, 1, 4, 4, 3, 15));
    EXPECT_EQ(navigator.firstRow(30), 0) << "a larger window is filled";
}

} // namespace
