#include "platform/statusnotifier/StatusItem.h"

#include "platform/statusnotifier/Logo.h"
#include "platform/statusnotifier/MenuExporter.h"

#include <cctype>
#include <cerrno>
#include <map>
#include <unistd.h>
#include <utility>

namespace Kest::StatusNotifier {
namespace {

constexpr char kId[] = "com.kestronics.kest-settings"; // also of the desktop entry and the icons
constexpr char kInterface[] = "org.kde.StatusNotifierItem";
constexpr char kWatcher[] = "org.kde.StatusNotifierWatcher";
constexpr char kWatcherPath[] = "/StatusNotifierWatcher";
constexpr char kOwnerMatch[] =
    "type='signal',sender='org.freedesktop.DBus',path='/org/freedesktop/DBus',"
    "interface='org.freedesktop.DBus',member='NameOwnerChanged',arg0='org.kde.StatusNotifierWatcher'";
constexpr char kUnregisteredMatch[] =
    "type='signal',sender='org.kde.StatusNotifierWatcher',path='/StatusNotifierWatcher',"
    "interface='org.kde.StatusNotifierWatcher',member='StatusNotifierItemUnregistered'";
constexpr int kMaxRegistrations = 10; // with one watcher, which may keep removing the item
constexpr int kPixmapSides[] = {16, 22, 24, 32, 44, 48, 64};

int appendPixmap(sd_bus_message* reply, int side)
{
    return appendContainer(reply, SD_BUS_TYPE_STRUCT, "iiay", [&] {
        const auto pixmap = drawLogo(side);
        const int result = sd_bus_message_append(reply, "ii", side, side);
        return result < 0 ? result
                          : sd_bus_message_append_array(reply, 'y', pixmap.argb.data(), pixmap.argb.size());
    });
}

int appendLogo(sd_bus_message* reply)
{
    return appendContainer(reply, SD_BUS_TYPE_ARRAY, "(iiay)", [&] {
        return appendEach(kPixmapSides, [&](int side) { return appendPixmap(reply, side); });
    });
}

int getProperty(sd_bus*, const char*, const char*, const char* property, sd_bus_message* reply, void* item,
                sd_bus_error*)
{
    return static_cast<const StatusItem*>(item)->getProperty(property, reply);
}

// No Activate: panels that find one wait for a double click, or call it instead of opening the menu. The
// empty properties exist because some panels report each missing one.
// clang-format off
const sd_bus_vtable kProperties[] = {
    SD_BUS_VTABLE_START(0),
    SD_BUS_PROPERTY("Category", "s", getProperty, 0, SD_BUS_VTABLE_PROPERTY_CONST),
    SD_BUS_PROPERTY("Id", "s", getProperty, 0, SD_BUS_VTABLE_PROPERTY_CONST),
    SD_BUS_PROPERTY("Title", "s", getProperty, 0, SD_BUS_VTABLE_PROPERTY_CONST),
    SD_BUS_PROPERTY("Status", "s", getProperty, 0, SD_BUS_VTABLE_PROPERTY_CONST),
    SD_BUS_PROPERTY("WindowId", "i", getProperty, 0, SD_BUS_VTABLE_PROPERTY_CONST),
    SD_BUS_PROPERTY("IconThemePath", "s", getProperty, 0, SD_BUS_VTABLE_PROPERTY_CONST),
    SD_BUS_PROPERTY("IconName", "s", getProperty, 0, SD_BUS_VTABLE_PROPERTY_CONST),
    SD_BUS_PROPERTY("IconPixmap", "a(iiay)", getProperty, 0, SD_BUS_VTABLE_PROPERTY_CONST),
    SD_BUS_PROPERTY("OverlayIconName", "s", getProperty, 0, SD_BUS_VTABLE_PROPERTY_CONST),
    SD_BUS_PROPERTY("OverlayIconPixmap", "a(iiay)", getProperty, 0, SD_BUS_VTABLE_PROPERTY_CONST),
    SD_BUS_PROPERTY("AttentionIconName", "s", getProperty, 0, SD_BUS_VTABLE_PROPERTY_CONST),
    SD_BUS_PROPERTY("AttentionIconPixmap", "a(iiay)", getProperty, 0, SD_BUS_VTABLE_PROPERTY_CONST),
    SD_BUS_PROPERTY("AttentionMovieName", "s", getProperty, 0, SD_BUS_VTABLE_PROPERTY_CONST),
    SD_BUS_PROPERTY("ToolTip", "(sa(iiay)ss)", getProperty, 0, SD_BUS_VTABLE_PROPERTY_CONST),
    SD_BUS_PROPERTY("ItemIsMenu", "b", getProperty, 0, SD_BUS_VTABLE_PROPERTY_CONST),
    SD_BUS_PROPERTY("Menu", "o", getProperty, 0, SD_BUS_VTABLE_PROPERTY_CONST),
    SD_BUS_SIGNAL("NewTitle", "", 0),
    SD_BUS_SIGNAL("NewIcon", "", 0),
    SD_BUS_SIGNAL("NewToolTip", "", 0),
    SD_BUS_SIGNAL("NewStatus", "s", 0),
    SD_BUS_VTABLE_END,
};
// clang-format on

int onWatcherOwnerChanged(sd_bus_message* signal, void* item, sd_bus_error*)
{
    const char* name = nullptr;
    const char* before = nullptr;
    const char* now = nullptr;
    if (sd_bus_message_read(signal, "sss", &name, &before, &now) >= 0)
        static_cast<StatusItem*>(item)->watcherOwnerChanged(now);
    return 0;
}

int onItemUnregistered(sd_bus_message* signal, void* item, sd_bus_error*)
{
    const char* removed = nullptr;
    if (sd_bus_message_read(signal, "s", &removed) >= 0)
        static_cast<StatusItem*>(item)->unregistered(removed);
    return 0;
}

int onRegistrationAnswered(sd_bus_message* answer, void* item, sd_bus_error*)
{
    static_cast<StatusItem*>(item)->registrationAnswered(sd_bus_message_is_method_error(answer, nullptr) ==
                                                         0);
    return 0;
}

int onSetUpAnswered(sd_bus_message* answer, void* item, sd_bus_error*)
{
    static_cast<StatusItem*>(item)->setUpAnswered(-sd_bus_message_get_errno(answer));
    return 0;
}

int onNameAnswered(sd_bus_message* answer, void* item, sd_bus_error*)
{
    constexpr std::uint32_t kOwner = 1; // the bus's reply
    std::uint32_t answered = kOwner;
    int result = -sd_bus_message_get_errno(answer);
    if (result == 0)
        result = sd_bus_message_read(answer, "u", &answered);
    static_cast<StatusItem*>(item)->setUpAnswered(answered == kOwner ? result : -EEXIST);
    return 0;
}

} // namespace

StatusItem::StatusItem(sd_bus* onBus, std::string_view themePath, Callbacks reports)
    : bus(onBus), iconThemePath(busText(themePath)), callbacks(std::move(reports)),
      name(std::string(kInterface) + "-" + std::to_string(getpid()) + "-1")
{
    exportResult = sd_bus_add_object_vtable(bus, Into(object), kItemPath, kInterface, kProperties, this);
    if (exportResult >= 0)
        exportResult = claimName();
    registrationsLeft = kMaxRegistrations;
    if (exportResult >= 0)
        exportResult = registerItem();
}

int StatusItem::claimName()
{
    int result = sd_bus_request_name_async(bus, Into(nameRequest), name.c_str(), 0, onNameAnswered, this);
    if (result >= 0)
        result = watch(kOwnerMatch, onWatcherOwnerChanged, watcherMatch);
    return result < 0 ? result : watch(kUnregisteredMatch, onItemUnregistered, unregisteredMatch);
}

int StatusItem::watch(const char* match, sd_bus_message_handler_t handler, SlotPtr& slot)
{
    return sd_bus_add_match_async(bus, Into(slot), match, handler, onSetUpAnswered, this);
}

int StatusItem::getProperty(const std::string& property, sd_bus_message* reply) const
{
    if (property == "IconPixmap")
        return appendLogo(reply);
    if (property.ends_with("Pixmap"))
        return sd_bus_message_append(reply, "a(iiay)", 0);
    if (property == "ToolTip")
        return sd_bus_message_append(reply, "(sa(iiay)ss)", "", 0, "Kest Settings", "");
    if (property == "Menu")
        return sd_bus_message_append(reply, "o", kMenuPath);
    if (property == "ItemIsMenu")
        return sd_bus_message_append(reply, "b", 1);
    if (property == "WindowId")
        return sd_bus_message_append(reply, "i", 0);
    const std::map<std::string, std::string> texts{
        {"Category", "ApplicationStatus"}, {"Id", kId},
        {"Title", "Kest Settings"},        {"Status", "Active"},
        {"IconThemePath", iconThemePath},  {"IconName", std::string(kId) + "-tray"},
    };
    const auto found = texts.find(property);
    return sd_bus_message_append(reply, "s", found == texts.end() ? "" : found->second.c_str());
}

void StatusItem::watcherOwnerChanged(const std::string& owner)
{
    registrationsLeft = kMaxRegistrations;
    if (!owner.empty() && registerItem() < 0)
        registrationAnswered(false);
}

void StatusItem::unregistered(std::string_view removedItem)
{
    if (isThisItem(removedItem) && registrationsLeft > 0)
        registerItem();
}

// Watchers append the path, or a separator and the path, to the bus name.
bool StatusItem::isThisItem(std::string_view registeredName) const
{
    const char* uniqueName = nullptr;
    if (sd_bus_get_unique_name(bus, &uniqueName) < 0)
        return false;
    const auto starts = [&](std::string_view busName) {
        return registeredName.starts_with(busName) &&
               (registeredName.size() == busName.size() ||
                std::isdigit(static_cast<unsigned char>(registeredName[busName.size()])) == 0);
    };
    return starts(uniqueName) || starts(name);
}

int StatusItem::registerItem()
{
    --registrationsLeft;
    callbacks.registering();
    return sd_bus_call_method_async(bus, Into(registration), kWatcher, kWatcherPath, kWatcher,
                                    "RegisterStatusNotifierItem", onRegistrationAnswered, this, "s",
                                    kItemPath);
}

// A lost connection fails every call; the event loop reports it.
bool StatusItem::isLost() const { return sd_bus_is_open(bus) <= 0; }

void StatusItem::registrationAnswered(bool accepted)
{
    if (isLost())
        return;
    if (const auto report = std::exchange(callbacks.noTray, nullptr); !accepted && report)
        report();
}

void StatusItem::setUpAnswered(int result)
{
    if (result < 0 && !isLost())
        callbacks.refused(result);
}

} // namespace Kest::StatusNotifier
