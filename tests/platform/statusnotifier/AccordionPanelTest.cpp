// Labels for the panel that takes only the first underscore for a mnemonic.
#include "platform/statusnotifier/AccordionPanel.h"

#include <gtest/gtest.h>

#include <regex>

namespace Kest::StatusNotifier {
namespace {

TEST(AccordionPanel, ShowsEachLabelAsItIs)
{
    const std::regex mnemonic("_([^_])"); // as the panel replaces it, once
    for (const std::string title :
         {"", "_", "__", "a_b", "a__b", "a_b_c_", "_a", "a_", "__a_b__", "My_long_bus"}) {
        App::MenuModel model;
        const auto& item =
            model.statusMenu().addItem(std::make_unique<App::MenuItem>(App::ItemProperties{.title = title}));
        const auto label = std::get<std::string>(AccordionPanel::properties(item).at("label"));
        EXPECT_EQ(std::regex_replace(label, mnemonic, "$1", std::regex_constants::format_first_only), title);
    }
}

} // namespace
} // namespace Kest::StatusNotifier
