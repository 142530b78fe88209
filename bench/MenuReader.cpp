#include "bench/MenuReader.h"

#include <algorithm>
#include <cstdint>
#include <stdexcept>
#include <string_view>

namespace Kest::Bench {
namespace {

// An "a{sv}" of which only the text is wanted.
void readProperties(sd_bus_message* message, int id, std::vector<Label>& labels)
{
    sd_bus_message_enter_container(message, 'a', "{sv}");
    while (sd_bus_message_enter_container(message, 'e', "sv") > 0) {
        const char* name = nullptr;
        const char* text = nullptr;
        sd_bus_message_read(message, "s", &name);
        if (std::string_view(name) == "label" && sd_bus_message_read(message, "v", "s", &text) > 0)
            labels.emplace_back(id, text);
        else
            sd_bus_message_skip(message, "v");
        sd_bus_message_exit_container(message);
    }
    sd_bus_message_exit_container(message);
}

void readLayout(sd_bus_message* message, std::vector<Label>& labels)
{
    int id = 0;
    sd_bus_message_enter_container(message, 'r', "ia{sv}av");
    sd_bus_message_read(message, "i", &id);
    readProperties(message, id, labels);
    sd_bus_message_enter_container(message, 'a', "v");
    while (sd_bus_message_enter_container(message, 'v', "(ia{sv}av)") > 0) {
        readLayout(message, labels);
        sd_bus_message_exit_container(message);
    }
    sd_bus_message_exit_container(message);
    sd_bus_message_exit_container(message);
}

} // namespace

std::vector<Label> readMenu(sd_bus* bus, const std::string& item)
{
    sd_bus_message* reply = nullptr;
    std::vector<Label> labels;
    if (sd_bus_call_method(bus, item.c_str(), kMenuPath, kMenuInterface, "GetLayout", nullptr, &reply, "iias",
                           0, -1, 0) >= 0) {
        std::uint32_t revision = 0;
        sd_bus_message_read(reply, "u", &revision);
        readLayout(reply, labels);
    }
    sd_bus_message_unref(reply);
    return labels;
}

int idOf(const std::vector<Label>& menu, const std::string& text)
{
    const auto found = std::ranges::find(menu, text, &Label::second);
    if (found == menu.end())
        throw std::runtime_error("no row \"" + text + "\" in the menu");
    return found->first;
}

std::vector<Label> changedLabels(sd_bus_message* signal)
{
    std::vector<Label> labels;
    if (sd_bus_message_is_signal(signal, kMenuInterface, "ItemsPropertiesUpdated") <= 0)
        return labels;
    sd_bus_message_enter_container(signal, 'a', "(ia{sv})");
    while (sd_bus_message_enter_container(signal, 'r', "ia{sv}") > 0) {
        int id = 0;
        sd_bus_message_read(signal, "i", &id);
        readProperties(signal, id, labels);
        sd_bus_message_exit_container(signal);
    }
    return labels;
}

} // namespace Kest::Bench
