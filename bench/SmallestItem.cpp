// The smallest program with a tray item: registers it, has a menu of one entry, and waits.
#include <cstddef>
#include <cstdint>
#include <systemd/sd-bus.h>

namespace {

constexpr char kItem[] = "org.kde.StatusNotifierItem";
constexpr char kMenu[] = "com.canonical.dbusmenu";

// Its properties, which sd-bus reads at their offsets.
struct Item {
    const char* text = "Smallest";
    const char* menu = "/MenuBar";
};

int getLayout(sd_bus_message* call, void*, sd_bus_error*)
{
    sd_bus_message* reply = nullptr;
    sd_bus_message_new_method_return(call, &reply);
    sd_bus_message_append(reply, "u(ia{sv}av)", 1U, 0, 0, 1, "(ia{sv}av)", 1, 1, "label", "s", "Entry", 0);
    return sd_bus_message_send(reply);
}

const sd_bus_vtable kItemVtable[] = {
    SD_BUS_VTABLE_START(0),
    SD_BUS_PROPERTY("Id", "s", nullptr, offsetof(Item, text), 0),
    SD_BUS_PROPERTY("Category", "s", nullptr, offsetof(Item, text), 0),
    SD_BUS_PROPERTY("Status", "s", nullptr, offsetof(Item, text), 0),
    SD_BUS_PROPERTY("Title", "s", nullptr, offsetof(Item, text), 0),
    SD_BUS_PROPERTY("Menu", "o", nullptr, offsetof(Item, menu), 0),
    SD_BUS_VTABLE_END,
};

const sd_bus_vtable kMenuVtable[] = {
    SD_BUS_VTABLE_START(0),
    SD_BUS_METHOD("GetLayout", "iias", "u(ia{sv}av)", getLayout, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_VTABLE_END,
};

} // namespace

int main()
{
    Item item;
    sd_bus* bus = nullptr;
    if (sd_bus_open_user(&bus) < 0)
        return 1;
    sd_bus_add_object_vtable(bus, nullptr, "/StatusNotifierItem", kItem, kItemVtable, &item);
    sd_bus_add_object_vtable(bus, nullptr, "/MenuBar", kMenu, kMenuVtable, nullptr);
    const char* name = nullptr;
    sd_bus_get_unique_name(bus, &name);
    sd_bus_call_method(bus, "org.kde.StatusNotifierWatcher", "/StatusNotifierWatcher",
                       "org.kde.StatusNotifierWatcher", "RegisterStatusNotifierItem", nullptr, nullptr, "s",
                       name);
    while (sd_bus_wait(bus, UINT64_MAX) >= 0)
        while (sd_bus_process(bus, nullptr) > 0) {
        }
}
