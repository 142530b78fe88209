// What a panel is told of the menu, without a bus.
#include "platform/statusnotifier/MenuProperties.h"

#include "platform/statusnotifier/DesktopWorkspace.h"
#include "platform/statusnotifier/Logo.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Kest::StatusNotifier {
namespace {

using App::EntryView;
using App::ItemProperties;
using App::ItemSnapshot;
using App::Mark;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using testing::UnorderedElementsAre;

ItemSnapshot item(int id, ItemProperties properties, std::vector<ItemSnapshot> items = {})
{
    const bool hasSubmenu = !items.empty();
    return {id, std::move(properties), hasSubmenu, std::move(items)};
}

TEST(ItemProperties, SayEverythingInWordsAndTellTheStateAlways)
{
    EXPECT_THAT(itemProperties(item(1, {.title = "my_file", .mark = Mark::radio, .view = {}})),
                UnorderedElementsAre(Pair("label", Value("my__file")), Pair("toggle-type", Value("radio")),
                                     Pair("toggle-state", Value(0))));
    EXPECT_THAT(
        itemProperties(item(1, {.title = "B", .mark = Mark::check, .on = true, .red = true, .view = {}})),
        UnorderedElementsAre(Pair("label", Value("B (not available)")),
                             Pair("toggle-type", Value("checkmark")), Pair("toggle-state", Value(1)),
                             Pair("disposition", Value("alert"))));
    EXPECT_THAT(
        itemProperties(item(1, {.title = {}, .tag = 7, .enabled = false, .view = EntryView{"", "42%"}})),
        UnorderedElementsAre(Pair("label", Value("Process 7  42%")), Pair("enabled", Value(false))));
    EXPECT_THAT(itemProperties(item(1, {.title = {}, .hidden = true, .separator = true, .view = {}})),
                UnorderedElementsAre(Pair("type", Value("separator")), Pair("visible", Value(false))));
    EXPECT_EQ(escapedLabel("__ \x01\xFF"), "____  \uFFFD") << "nothing that the bus refuses";
}

TEST(Layout, GoesDownAsFarAsAsked)
{
    const auto menu = item(0, {.title = "", .view = {}},
                           {item(1, {.title = "A", .view = {}}, {item(2, {.title = "B", .view = {}})})});
    EXPECT_THAT(layoutOf(menu, 0).children, IsEmpty());
    ASSERT_EQ(layoutOf(menu, 1).children.size(), 1U);
    EXPECT_THAT(layoutOf(menu, 1).children[0].children, IsEmpty());
    EXPECT_EQ(layoutOf(menu, 1).children[0].properties.at("children-display"), Value("submenu"));
    ASSERT_EQ(layoutOf(menu, -1).children[0].children.size(), 1U);
    EXPECT_EQ(layoutOf(menu, -1).children[0].children[0].id, 2);
}

TEST(MenuUpdate, TellsOnlyWhatIsDifferent)
{
    const auto before = item(0, {.title = "", .view = {}},
                             {item(1, {.title = "A", .mark = Mark::radio, .on = true, .view = {}}),
                              item(2, {.title = "B", .mark = Mark::radio, .enabled = false, .view = {}}),
                              item(3, {.title = "C", .view = {}}, {item(4, {.title = "D", .view = {}})})});
    EXPECT_TRUE(updateBetween(before, before).isEmpty());

    auto after = before;
    after.items[0].properties.on = false;
    after.items[1].properties.on = true;
    after.items[1].properties.enabled = true;
    after.items[2].properties.tag = 9; // nothing that a panel sees
    after.items[2].items.push_back(item(5, {.title = "E", .view = {}}));
    const auto update = updateBetween(before, after);
    ASSERT_EQ(update.items.size(), 2U);
    EXPECT_EQ(update.items[0].id, 1);
    EXPECT_THAT(update.items[0].updated, ElementsAre(Pair("toggle-state", Value(0))));
    EXPECT_THAT(update.items[1].updated, ElementsAre(Pair("toggle-state", Value(1))));
    EXPECT_THAT(update.items[1].removed, ElementsAre("enabled"));
    EXPECT_THAT(update.layouts, ElementsAre(3)) << "the submenu, not the whole menu";
}

TEST(Logo, HasStrokesOnAnEmptyGroundInEachSize)
{
    for (const int side : {16, 22, 64}) {
        const auto logo = drawLogo(side);
        ASSERT_EQ(logo.argb.size(), static_cast<std::size_t>(side * side * 4));
        const auto alpha = [&](int x, int y) {
            return logo.argb[static_cast<std::size_t>((y * side / 16 * side + x * side / 16) * 4)];
        };
        EXPECT_EQ(alpha(0, 0), 0);
        EXPECT_GT(alpha(4, 8), 200) << side; // the stem
    }
}

TEST(FileUri, EscapesWhatAnAddressMayNotHold)
{
    EXPECT_EQ(fileUri("/Out put/50%/é"), "file:///Out%20put/50%25/%C3%A9");
}

} // namespace
} // namespace Kest::StatusNotifier
