#include "platform/statusnotifier/MenuMessages.h"

#include <algorithm>
#include <string_view>

namespace Kest::StatusNotifier {
namespace {

PanelEvent eventNamed(std::string_view name)
{
    if (name == "clicked")
        return PanelEvent::clicked;
    if (name == "opened")
        return PanelEvent::opened;
    return name == "closed" ? PanelEvent::closed : PanelEvent::other;
}

int appendRemoved(sd_bus_message* message, const ItemUpdate& item)
{
    return appendContainer(message, SD_BUS_TYPE_STRUCT, "ias", [&] {
        const int result = sd_bus_message_append(message, "i", item.id);
        return result < 0 ? result : appendStrings(message, item.removed);
    });
}

int appendWithAllBelow(sd_bus_message* message, const App::ItemSnapshot& item)
{
    const auto appendBelow = [&](const App::ItemSnapshot& child) {
        return appendWithAllBelow(message, child);
    };
    const int result = appendItem(message, item.id, changeableProperties(item));
    return result < 0 ? result : appendEach(item.items, appendBelow);
}

} // namespace

int readIds(sd_bus_message* message, std::vector<App::ItemId>& ids)
{
    const void* data = nullptr;
    std::size_t size = 0;
    const int result = sd_bus_message_read_array(message, SD_BUS_TYPE_INT32, &data, &size);
    if (result < 0)
        return result;
    const auto* const first = static_cast<const App::ItemId*>(data);
    ids.assign(first, first + size / sizeof(App::ItemId));
    std::ranges::sort(ids);
    ids.erase(std::unique(ids.begin(), ids.end()), ids.end());
    return 0;
}

int readLayoutRequest(sd_bus_message* message, LayoutRequest& request)
{
    int result = sd_bus_message_read(message, "ii", &request.parent, &request.depth);
    if (result >= 0)
        result = sd_bus_message_enter_container(message, SD_BUS_TYPE_ARRAY, "s");
    const char* name = nullptr;
    while (result >= 0 && (result = sd_bus_message_read(message, "s", &name)) > 0)
        request.properties.emplace(name);
    return result < 0 ? result : sd_bus_message_exit_container(message);
}

int readEvent(sd_bus_message* message, PanelEvents& events)
{
    App::ItemId id = 0;
    const char* name = nullptr;
    const int result = sd_bus_message_read(message, "is", &id, &name);
    if (result < 0)
        return result;
    events.emplace_back(id, eventNamed(name));
    return sd_bus_message_skip(message, "vu");
}

int readEvents(sd_bus_message* message, PanelEvents& events)
{
    int result = sd_bus_message_enter_container(message, SD_BUS_TYPE_ARRAY, "(isvu)");
    while (result >= 0 &&
           (result = sd_bus_message_enter_container(message, SD_BUS_TYPE_STRUCT, "isvu")) > 0) {
        result = readEvent(message, events);
        if (result >= 0)
            result = sd_bus_message_exit_container(message);
    }
    return result;
}

int appendIds(sd_bus_message* message, const std::vector<App::ItemId>& ids)
{
    return sd_bus_message_append_array(message, SD_BUS_TYPE_INT32, ids.data(),
                                       ids.size() * sizeof(App::ItemId));
}

int appendItem(sd_bus_message* message, App::ItemId id, const Properties& properties)
{
    return appendContainer(message, SD_BUS_TYPE_STRUCT, "ia{sv}", [&] {
        const int result = sd_bus_message_append(message, "i", id);
        return result < 0 ? result : appendProperties(message, properties);
    });
}

int appendLayout(sd_bus_message* message, const Layout& layout)
{
    const auto appendChild = [&](const Layout& child) {
        return appendContainer(message, SD_BUS_TYPE_VARIANT, "(ia{sv}av)",
                               [&] { return appendLayout(message, child); });
    };
    return appendContainer(message, SD_BUS_TYPE_STRUCT, "ia{sv}av", [&] {
        int result = sd_bus_message_append(message, "i", layout.id);
        if (result >= 0)
            result = appendProperties(message, layout.properties);
        if (result >= 0)
            result = appendContainer(message, SD_BUS_TYPE_ARRAY, "v",
                                     [&] { return appendEach(layout.children, appendChild); });
        return result;
    });
}

int appendUpdates(sd_bus_message* message, const std::vector<ItemUpdate>& items)
{
    const auto appendUpdated = [&](const ItemUpdate& item) {
        return item.updated.empty() ? 0 : appendItem(message, item.id, item.updated);
    };
    const auto appendAnyRemoved = [&](const ItemUpdate& item) {
        return item.removed.empty() ? 0 : appendRemoved(message, item);
    };
    const int result = appendContainer(message, SD_BUS_TYPE_ARRAY, "(ia{sv})",
                                       [&] { return appendEach(items, appendUpdated); });
    return result < 0 ? result : appendContainer(message, SD_BUS_TYPE_ARRAY, "(ias)", [&] {
        return appendEach(items, appendAnyRemoved);
    });
}

int appendWholeMenu(sd_bus_message* message, const App::ItemSnapshot& menu)
{
    const auto appendItems = [&](const App::ItemSnapshot& item) { return appendWithAllBelow(message, item); };
    const int result = appendContainer(message, SD_BUS_TYPE_ARRAY, "(ia{sv})",
                                       [&] { return appendEach(menu.items, appendItems); });
    return result < 0 ? result : sd_bus_message_append(message, "a(ias)", 0);
}

} // namespace Kest::StatusNotifier
