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
    int result = sd_bus_message_open_container(message, SD_BUS_TYPE_ARRAY, "{sv}");
    for (const auto& [name, value] : properties) {
        if (result >= 0)
            result = sd_bus_message_open_container(message, SD_BUS_TYPE_DICT_ENTRY, "sv");
        if (result >= 0)
            result = sd_bus_message_append(message, "s", name.c_str());
        if (result >= 0)
            result = appendVariant(message, value);
        if (result >= 0)
            result = sd_bus_message_close_container(message);
    }
    return result < 0 ? result : sd_bus_message_close_container(message);
}

int appendLayout(sd_bus_message* message, const Layout& layout)
{
    int result = sd_bus_message_open_container(message, SD_BUS_TYPE_STRUCT, "ia{sv}av");
    if (result >= 0)
        result = sd_bus_message_append(message, "i", layout.id);
    if (result >= 0)
        result = appendProperties(message, layout.properties);
    if (result >= 0)
        result = sd_bus_message_open_container(message, SD_BUS_TYPE_ARRAY, "v");
    for (const auto& child : layout.children) {
        if (result >= 0)
            result = sd_bus_message_open_container(message, SD_BUS_TYPE_VARIANT, "(ia{sv}av)");
        if (result >= 0)
            result = appendLayout(message, child);
        if (result >= 0)
            result = sd_bus_message_close_container(message);
    }
    if (result >= 0)
        result = sd_bus_message_close_container(message);
    return result < 0 ? result : sd_bus_message_close_container(message);
}

int appendStrings(sd_bus_message* message, const std::vector<std::string>& strings)
{
    int result = sd_bus_message_open_container(message, SD_BUS_TYPE_ARRAY, "s");
    for (const auto& text : strings)
        if (result >= 0)
            result = sd_bus_message_append(message, "s", text.c_str());
    return result < 0 ? result : sd_bus_message_close_container(message);
}

} // namespace Kest::StatusNotifier
