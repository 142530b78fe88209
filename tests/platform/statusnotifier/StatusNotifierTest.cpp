#include "platform/statusnotifier/AccordionPanel.h"
#include "platform/statusnotifier/Logo.h"
#include "platform/statusnotifier/MenuProperties.h"

#include <gmock/gmock.h>

#include <regex>

namespace Kest::StatusNotifier {
namespace {

using App::ItemProperties;
using testing::Pair;
using testing::UnorderedElementsAre;

App::MenuItem& add(App::MenuModel& model, ItemProperties properties)
{
    return model.statusMenu().addItem(std::make_unique<App::MenuItem>(std::move(properties)));
}

TEST(AccordionPanel, ShowsEachLabelUnchanged)
{
    const std::regex mnemonic("_([^_])"); // as the panel replaces it, once
    App::MenuModel model;
    for (const std::string title :
         {"", "_", "__", "a_b", "a__b", "a_b_c_", "_a", "a_", "__a_b__", "My_long_bus"}) {
        const auto label = AccordionPanel::properties(add(model, {.title = title})).at("label");
        EXPECT_EQ(std::regex_replace(std::get<std::string>(label), mnemonic, "$1",
                                     std::regex_constants::format_first_only),
                  title);
    }
}

TEST(ItemProperties, ContainWhatIsNotTheDefaultAsTextThatTheBusAccepts)
{
    const auto properties = [](ItemProperties item) {
        return itemProperties({1, std::move(item), false, {}});
    };
    EXPECT_THAT(properties({.tag = 7, .enabled = false, .encoding = {{"", 42}}}),
                UnorderedElementsAre(Pair("label", Value("Process 7  42%")), Pair("enabled", Value(false))));
    EXPECT_THAT(properties({.hidden = true, .separator = true}),
                UnorderedElementsAre(Pair("type", Value("separator")), Pair("visible", Value(false))));
    EXPECT_EQ(escapedLabel("__ \x01\xFF\xEF\xB7\x90\xF0\x9F\xBF\xBE\xEF\xBF\xBF"),
              "____  \uFFFD\uFFFD\uFFFD\uFFFD");
}

TEST(ItemUpdates, NamePropertiesThatHaveTheirDefaultAgain)
{
    App::MenuModel model;
    auto& greyed = add(model, {.enabled = false});
    auto& plain = add(model, {});
    model.takeChanges();
    greyed.setEnabled(true);
    plain.setState(true); // it has no mark
    const auto updates = itemUpdates(model.takeChanges(), model);
    ASSERT_EQ(updates.size(), 1U);
    EXPECT_THAT(updates[0].removed, testing::ElementsAre("enabled"));
}

// Greys from 156 on and to 109 have a contrast of at least 4.5 to dark and to light panels, as WCAG 2 defines
// it.
TEST(Logo, ContrastsWithDarkAndLightPanels)
{
    for (const int side : {16, 22, 24, 32, 44, 48, 64}) {
        const auto pixmap = drawLogo(side);
        int light = 0;
        int dark = 0;
        for (std::size_t pixel = 0; pixel < pixmap.argb.size(); pixel += 4) {
            const bool isOpaque = pixmap.argb[pixel] > 230;
            light += isOpaque && pixmap.argb[pixel + 1] >= 156 ? 1 : 0;
            dark += isOpaque && pixmap.argb[pixel + 1] <= 109 ? 1 : 0;
        }
        EXPECT_GE(std::min(light, dark), side * side / 8) << side;
    }
}

} // namespace
} // namespace Kest::StatusNotifier
