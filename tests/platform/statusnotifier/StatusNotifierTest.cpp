// What panels get, without a bus daemon.
#include "platform/statusnotifier/Logo.h"
#include "platform/statusnotifier/MenuExporter.h"

#include <gmock/gmock.h>

#include <cstring>
#include <regex>
#include <sys/socket.h>

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

TEST(MenuExporter, RefusesAGroupOfEventsWithANameThatIsNotText)
{
    int ends[2];
    ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0, ends), 0);
    BusPtr buses[2]; // the agent's end and the panel's
    for (const int i : {0, 1}) {
        sd_bus_new(Into(buses[i]));
        sd_bus_set_server(buses[i].get(), i == 0 ? 1 : 0, {});
        sd_bus_set_fd(buses[i].get(), ends[i], ends[i]);
        sd_bus_set_anonymous(buses[i].get(), 1);
        sd_bus_start(buses[i].get());
    }
    App::MenuModel model;
    const auto id = add(model, {.title = "A"}).id();
    const MenuExporter exporter(buses[0].get(), {model, {}, [](App::ItemId) {}, {}});

    MessagePtr call;
    sd_bus_message_new_method_call(buses[1].get(), Into(call), nullptr, kMenuPath, "com.canonical.dbusmenu",
                                   "EventGroup");
    sd_bus_message_append(call.get(), "a(isvu)", 1, id, "opened", "i", 0, 0);
    sd_bus_message_seal(call.get(), 1, 0);
    sd_bus_message_enter_container(call.get(), SD_BUS_TYPE_ARRAY, "(isvu)");
    sd_bus_message_enter_container(call.get(), SD_BUS_TYPE_STRUCT, "isvu");
    const char* name = nullptr;
    ASSERT_GT(sd_bus_message_read(call.get(), "is", nullptr, &name), 0);
    std::memcpy(const_cast<char*>(name), "\xEF\xBF\xBE", 3); // sd-bus itself sends no such text

    const auto note = [](sd_bus_message* answer, void* refused, sd_bus_error*) {
        return *static_cast<int*>(refused) = sd_bus_message_is_method_error(answer, nullptr);
    };
    int refused = 0;
    sd_bus_call_async(buses[1].get(), nullptr, call.get(), note, &refused, 0);
    for (int i = 0; i < 100; ++i)
        sd_bus_process(buses[i % 2].get(), nullptr);
    EXPECT_EQ(refused, 1);
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
