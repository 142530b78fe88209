// Moving about in the menu, and where one is when it changes.
#include "platform/terminal/Navigator.h"

#include "tests/platform/terminal/SampleMenu.h"

#include <gmock/gmock.h>

namespace {

using namespace Kest::Test;
using Kest::App::ItemId;
using testing::ElementsAre;

class NavigatorTest : public testing::Test {
protected:
    void SetUp() override { navigator.show(menu); }
    std::vector<ItemId> selectedAfter(const std::vector<int>& steps)
    {
        std::vector<ItemId> selected;
        for (const int step : steps) {
            navigator.moveBy(step);
            selected.push_back(navigator.selected());
        }
        return selected;
    }
    ItemId selectedIn(const Items& items)
    {
        menu.items[2].items = items;
        navigator.show(menu);
        return navigator.selected();
    }

    Kest::App::ItemSnapshot menu = sampleMenu();
    Kest::Terminal::Navigator navigator;
};

TEST_F(NavigatorTest, MovesOverSeparatorsAndHiddenItemsAndStopsAtTheEnds)
{
    EXPECT_THAT(selectedAfter({0, -1, 1, 1, 1, -2, 100, -100}), ElementsAre(1, 1, 3, 9, 9, 1, 9, 1));
}

TEST_F(NavigatorTest, KeepsTheSelectedItemOrSelectsTheNearestOne)
{
    const auto before = menu.items[2].items;
    navigator.goTo(6);
    EXPECT_EQ(selectedIn({bus(20, "A"), bus(21, "B"), before[0], before[1], before[2]}), 6);
    EXPECT_EQ(selectedAfter({-1, 1}), (std::vector{5, 6}));
    EXPECT_EQ(selectedIn({before[0], before[1]}), 5);
    EXPECT_EQ(selectedIn({before[0]}), 4);
    EXPECT_EQ(selectedIn({}), Kest::App::kStatusMenuId);
    EXPECT_EQ(selectedAfter({1}), std::vector{Kest::App::kStatusMenuId});
    EXPECT_EQ(selectedIn({bus(30, "New")}), 30);
}

TEST_F(NavigatorTest, LeavesASubmenuThatIsHidden)
{
    navigator.goTo(5);
    hide(menu.items[2]);
    navigator.show(menu);
    EXPECT_EQ(navigator.menu().id, 0);
    EXPECT_EQ(navigator.selected(), 9) << "the nearest row";
    navigator.goTo(5);
    EXPECT_EQ(navigator.menu().id, 0);
}

TEST_F(NavigatorTest, ScrollsOnlyAsFarAsItMust)
{
    Items items;
    for (ItemId id = 1; id <= 20; ++id)
        items.push_back(plainLeaf(id, "item"));
    navigator.show(statusMenu(items));
    std::vector<int> tops;
    for (const int step : {4, 1, 3, -4, -1, 100}) {
        navigator.moveBy(step);
        tops.push_back(navigator.firstRow(5));
    }
    EXPECT_THAT(tops, ElementsAre(0, 1, 4, 4, 3, 15));
    EXPECT_EQ(navigator.firstRow(30), 0) << "a larger window is filled";
}

} // namespace
