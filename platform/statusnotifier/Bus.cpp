#include "platform/statusnotifier/Bus.h"

namespace Kest::StatusNotifier {

int appendVariant(sd_bus_message* message, const Value& value)
{
    if (const auto* text = std::get_if<std::string>(&value))
        return sd_bus_message_append(message, "v", "s", text->c_str());
    if (const auto* flag = std::get_if<bool>(&value))
        return sd_bus_message_append(message, "v", "b", *flag ? 1 : 0);
    return sd_bus_message_append(message, "v", "i", std::get<std::int32_t>(value));
}

int appendProperties(sd_bus_message* message, const Properties& properties)
{
    const auto appendOne = [&](const auto& property) {
        return appendContainer(message, SD_BUS_TYPE_DICT_ENTRY, "sv", [&] {
            const int result = sd_bus_message_append(message, "s", property.first.c_str());
            return result < 0 ? result : appendVariant(message, property.second);
        });
    };
    return appendContainer(message, SD_BUS_TYPE_ARRAY, "{sv}",
                           [&] { return appendEach(properties, appendOne); });
}

int appendStrings(sd_bus_message* message, const std::vector<std::string>& strings)
{
    return appendContainer(message, SD_BUS_TYPE_ARRAY, "s", [&] {
        return appendEach(strings, [&](const std::string& text) {
            return sd_bus_message_append(message, "s", text.c_str());
        });
    });
}

} // namespace Kest::StatusNotifier
