// What a panel is told of the menu, without a bus.
#include "platform/statusnotifier/MenuProperties.h"

#include <gmock/gmock.h>

namespace Kest::StatusNotifier {
namespace {

using App::EntryView;
using App::ItemProperties;
using App::ItemSnapshot;
using testing::ElementsAre;
using testing::Pair;
using testing::UnorderedElementsAre;

ItemSnapshot item(int id, ItemProperties properties) { return {id, std::move(properties), false, {}}; }

TEST(ItemProperties, SayEverythingInWords)
{
    EXPECT_THAT(itemProperties(item(1, {.tag = 7, .enabled = false, .view = EntryView{"", 42}})),
                UnorderedElementsAre(Pair("label", Value("Process 7  42%")), Pair("enabled", Value(false))));
    EXPECT_THAT(itemProperties(item(1, {.hidden = true, .separator = true})),
                UnorderedElementsAre(Pair("type", Value("separator")), Pair("visible", Value(false))));
    EXPECT_EQ(escapedLabel("__ \x01\xFF\xEF\xB7\x90\xF0\x9F\xBF\xBE\xEF\xBF\xBF"),
              "____  \uFFFD\uFFFD\uFFFD\uFFFD")
        << "nothing that the bus refuses";
}

TEST(ItemUpdates, NameWhatIsAsUsualAgainAndNothingThatAPanelDoesNotSee)
{
    App::MenuModel model;
    const auto add = [&](ItemProperties properties) -> App::MenuItem& {
        return model.statusMenu().addItem(std::make_unique<App::MenuItem>(std::move(properties)));
    };
    auto& greyed = add({.title = "A", .enabled = false});
    auto& plain = add({.title = "B"});
    model.takeChanges();
    greyed.setEnabled(true);
    plain.setState(true); // it has no mark
    const auto updates = itemUpdates(model.takeChanges(), model);
    ASSERT_EQ(updates.size(), 1U);
    EXPECT_THAT(updates[0].removed, ElementsAre("enabled"));
}

} // namespace
} // namespace Kest::StatusNotifier
