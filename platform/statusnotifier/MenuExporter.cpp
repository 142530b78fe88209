#include "platform/statusnotifier/MenuExporter.h"

#include "log/Log.h"

#include <cstring>
#include <set>
#include <utility>

namespace Kest::StatusNotifier {
namespace {

constexpr char kInterface[] = "com.canonical.dbusmenu";
constexpr std::uint32_t kVersion = 3;
constexpr std::uint64_t kMaxQueued = 16; // messages; the socket accepts hundreds before one is queued

// Replies InvalidArgs: after UnknownMethod-like errors some panels never call the method again.
int unknownId(sd_bus_message* call, App::ItemId id)
{
    return sd_bus_reply_method_errorf(call, SD_BUS_ERROR_INVALID_ARGS, "no menu item %d", id);
}

using Method = int (MenuExporter::*)(sd_bus_message*);

template <Method method>
int forward(sd_bus_message* call, void* exporter, sd_bus_error*)
{
    return (static_cast<MenuExporter*>(exporter)->*method)(call);
}

const char* senderOf(sd_bus_message* call)
{
    const char* sender = sd_bus_message_get_sender(call);
    return sender == nullptr ? "" : sender;
}

int getConstant(sd_bus*, const char*, const char*, const char* property, sd_bus_message* reply, void*,
                sd_bus_error*)
{
    const std::string_view name(property);
    if (name == "Version")
        return sd_bus_message_append(reply, "u", kVersion);
    if (name == "IconThemePath")
        return appendStrings(reply, {});
    return sd_bus_message_append(reply, "s", name == "TextDirection" ? "ltr" : "normal");
}

// clang-format off
const sd_bus_vtable kMethods[] = {
    SD_BUS_VTABLE_START(0),
    SD_BUS_METHOD("GetLayout", "iias", "u(ia{sv}av)", forward<&MenuExporter::getLayout>, 0),
    SD_BUS_METHOD("GetGroupProperties", "aias", "a(ia{sv})", forward<&MenuExporter::getGroupProperties>, 0),
    SD_BUS_METHOD("GetProperty", "is", "v", forward<&MenuExporter::getProperty>, 0),
    SD_BUS_METHOD("Event", "isvu", "", forward<&MenuExporter::event>, 0),
    SD_BUS_METHOD("EventGroup", "a(isvu)", "ai", forward<&MenuExporter::eventGroup>, 0),
    SD_BUS_METHOD("AboutToShow", "i", "b", forward<&MenuExporter::aboutToShow>, 0),
    SD_BUS_METHOD("AboutToShowGroup", "ai", "aiai", forward<&MenuExporter::aboutToShowGroup>, 0),
    SD_BUS_PROPERTY("Version", "u", getConstant, 0, SD_BUS_VTABLE_PROPERTY_CONST),
    SD_BUS_PROPERTY("TextDirection", "s", getConstant, 0, SD_BUS_VTABLE_PROPERTY_CONST),
    SD_BUS_PROPERTY("Status", "s", getConstant, 0, SD_BUS_VTABLE_PROPERTY_CONST),
    SD_BUS_PROPERTY("IconThemePath", "as", getConstant, 0, SD_BUS_VTABLE_PROPERTY_CONST),
    SD_BUS_SIGNAL("ItemsPropertiesUpdated", "a(ia{sv})a(ias)", 0),
    SD_BUS_SIGNAL("LayoutUpdated", "ui", 0),
    SD_BUS_SIGNAL("ItemActivationRequested", "iu", 0),
    SD_BUS_VTABLE_END,
};
// clang-format on

// Sends a signal to one client, or to all if `destination` is null.
template <typename Append>
int sendSignal(sd_bus* bus, const char* signal, const char* destination, Append append)
{
    MessagePtr message;
    int result = sd_bus_message_new_signal(bus, Into(message), kMenuPath, kInterface, signal);
    if (result >= 0 && destination != nullptr)
        result = sd_bus_message_set_destination(message.get(), destination);
    if (result >= 0)
        result = append(message.get());
    return result < 0 ? result : sd_bus_send(bus, message.get(), nullptr);
}

int sendUpdates(sd_bus* bus, const char* destination, const std::vector<ItemUpdate>& items)
{
    if (items.empty())
        return 0;
    return sendSignal(bus, "ItemsPropertiesUpdated", destination,
                      [&](sd_bus_message* message) { return appendUpdates(message, items); });
}

void collectIds(const App::ItemSnapshot& item, std::vector<App::ItemId>& ids)
{
    ids.push_back(item.id);
    for (const auto& child : item.items)
        collectIds(child, ids);
}

} // namespace

MenuExporter::MenuExporter(sd_bus* onBus, MenuCallbacks menuCallbacks)
    : bus(onBus), callbacks(std::move(menuCallbacks))
{
    exportResult = sd_bus_add_object_vtable(bus, Into(slot), kMenuPath, kInterface, kMethods, this);
}

void MenuExporter::menuChanged(const App::MenuChanges& changes)
{
    auto updates = itemUpdates(changes, callbacks.menu);
    if (updates.empty() && changes.menus.empty())
        return;
    ++revision;
    if (!canSend())
        return;
    std::set<App::ItemId> layouts;
    for (const auto& [parent, change] : changes.menus)
        if (!panels.holdBackIfOpen(parent))
            layouts.insert(parent);
        else
            for (const auto& removed : change.removed)
                updates.push_back({removed.first, {{"visible", false}}, {}});
    isStale = sendItemUpdates(updates) < 0;
    sendLayoutsUpdated(layouts);
}

// Returns false once too much is queued, until all of it is sent.
bool MenuExporter::canSend()
{
    isStale = isStale || queuedMessages() > kMaxQueued;
    return !isStale;
}

std::uint64_t MenuExporter::queuedMessages() const
{
    std::uint64_t queued = 0;
    return sd_bus_get_n_queued_write(bus, &queued) < 0 ? kMaxQueued + 1 : queued;
}

// Sends a signal for each top-level submenu: some panels read only the menu that a signal names.
void MenuExporter::resendIfStale()
{
    if (!isStale || queuedMessages() > 0)
        return;
    isStale = false;
    ++revision;
    const auto menu = takeSnapshot(callbacks.menu);
    int result = sendSignal(bus, "ItemsPropertiesUpdated", kAllPanels,
                            [&](sd_bus_message* message) { return appendWholeMenu(message, menu); });
    for (const auto& item : menu.items)
        if (result >= 0 && item.hasSubmenu)
            result = sendLayoutUpdated(item.id, kAllPanels);
    if (result >= 0)
        result = sendLayoutUpdated(App::kStatusMenuId, kAllPanels);
    if (result < 0)
        Lct::Log(Lct::eLogWarning, "tray", "panels may show an outdated menu: %s", std::strerror(-result));
}

int MenuExporter::sendItemUpdates(const std::vector<ItemUpdate>& items)
{
    const int result = sendUpdates(bus, kAllPanels, items);
    return result < 0 ? result : sendUpdates(bus, accordion.busName(), accordion.corrections(items));
}

int MenuExporter::sendLayoutUpdated(App::ItemId parent, const char* destination)
{
    return sendSignal(bus, "LayoutUpdated", destination, [&](sd_bus_message* message) {
        return sd_bus_message_append(message, "ui", revision, parent);
    });
}

void MenuExporter::sendLayoutsUpdated(const std::set<App::ItemId>& parents, const char* destination)
{
    for (const auto parent : parents)
        if (canSend())
            isStale = sendLayoutUpdated(parent, destination) < 0;
}

void MenuExporter::resetPanels()
{
    accordion.reset();
    sendLayoutsUpdated(panels.reset());
}

int MenuExporter::getLayout(sd_bus_message* call)
{
    LayoutRequest request;
    if (const int failed = readLayoutRequest(call, request); failed < 0)
        return failed;
    const auto item = takeSnapshot(callbacks.menu, request.parent, request.depth);
    if (!item)
        return unknownId(call, request.parent);
    const auto* client = senderOf(call);
    accordion.recordRequest(client, request);
    const bool isWhole = accordion.is(client) && request.parent == App::kStatusMenuId;
    const int result = reply(call, [&](sd_bus_message* answer) {
        const int appended = sd_bus_message_append(answer, "u", revision);
        if (appended < 0)
            return appended;
        return appendLayout(answer, isWhole ? accordion.layout(callbacks.menu) : layoutOf(*item));
    });
    if (result >= 0 && request.depth == 1)
        sendLayoutsUpdated(panels.announceNew(client, *item), client);
    return result;
}

// Returns all items if no ids are given; omits unknown ids.
int MenuExporter::getGroupProperties(sd_bus_message* call)
{
    std::vector<App::ItemId> ids;
    if (const int failed = readIds(call, ids); failed < 0)
        return failed;
    if (ids.empty())
        collectIds(takeSnapshot(callbacks.menu), ids);
    const bool isAccordion = accordion.is(senderOf(call));
    return reply(call, [&](sd_bus_message* answer) { return appendGroup(answer, ids, isAccordion); });
}

int MenuExporter::appendGroup(sd_bus_message* answer, const std::vector<App::ItemId>& ids,
                              bool isAccordion) const
{
    return appendContainer(answer, SD_BUS_TYPE_ARRAY, "(ia{sv})", [&] {
        return appendEach(ids, [&](App::ItemId id) {
            const auto* item = isAccordion ? callbacks.menu.itemWithId(id) : nullptr;
            if (item != nullptr)
                return appendItem(answer, id, AccordionPanel::properties(*item));
            const auto alone = itemAlone(id);
            return alone ? appendItem(answer, id, itemProperties(*alone)) : 0;
        });
    });
}

int MenuExporter::getProperty(sd_bus_message* call)
{
    App::ItemId id = 0;
    const char* name = nullptr;
    if (const int failed = sd_bus_message_read(call, "is", &id, &name); failed < 0)
        return failed;
    const auto item = itemAlone(id);
    if (!item)
        return unknownId(call, id);
    const auto properties = itemProperties(*item);
    const auto found = properties.find(name);
    if (found == properties.end())
        return sd_bus_reply_method_errorf(call, SD_BUS_ERROR_INVALID_ARGS, "item %d has no property %s", id,
                                          name);
    return reply(call, [&](sd_bus_message* answer) { return appendVariant(answer, found->second); });
}

int MenuExporter::event(sd_bus_message* call)
{
    PanelEvents events;
    if (const int failed = readEvent(call, events); failed < 0)
        return failed;
    const auto [id, kind] = events.front();
    if (!handle(senderOf(call), id, kind))
        return unknownId(call, id);
    return sd_bus_reply_method_return(call, "");
}

// Handles each distinct event once, however often a group contains it. A malformed group has no effect.
int MenuExporter::eventGroup(sd_bus_message* call)
{
    PanelEvents events;
    if (const int failed = readEvents(call, events); failed < 0)
        return failed;
    std::set<std::pair<App::ItemId, PanelEvent>> handled;
    std::set<App::ItemId> unknown;
    for (const auto& [id, kind] : events)
        if (handled.emplace(id, kind).second && !handle(senderOf(call), id, kind))
            unknown.insert(id);
    return reply(call, [&](sd_bus_message* answer) {
        return appendIds(answer, {unknown.begin(), unknown.end()});
    });
}

// Always replies that nothing has changed: changes by opening are sent before the reply. After the other
// reply a panel reads the menu and may then ignore the next LayoutUpdated.
int MenuExporter::aboutToShow(sd_bus_message* call)
{
    App::ItemId id = 0;
    if (const int failed = sd_bus_message_read(call, "i", &id); failed < 0)
        return failed;
    return prepare(id) ? sd_bus_reply_method_return(call, "b", 0) : unknownId(call, id);
}

int MenuExporter::aboutToShowGroup(sd_bus_message* call)
{
    std::vector<App::ItemId> ids;
    if (const int failed = readIds(call, ids); failed < 0)
        return failed;
    std::vector<App::ItemId> unknown;
    for (const auto id : ids)
        if (!prepare(id))
            unknown.push_back(id);
    return reply(call, [&](sd_bus_message* answer) {
        const int result = appendIds(answer, {});
        return result < 0 ? result : appendIds(answer, unknown);
    });
}

bool MenuExporter::prepare(App::ItemId id)
{
    if (!itemAlone(id))
        return false;
    sendLayoutsUpdated(panels.aboutToShow(id));
    open(id);
    return true;
}

// Prepares all submenus with the whole menu: an update while a submenu is open is too late for some panels.
void MenuExporter::open(App::ItemId id) const
{
    callbacks.menuWillOpen(id);
    if (id != App::kStatusMenuId)
        return;
    const auto menu = takeSnapshot(callbacks.menu, id, 1);
    for (const auto& item : menu->items)
        if (item.hasSubmenu)
            callbacks.menuWillOpen(item.id);
}

// Returns false for an unknown item. A removed one can still be closed.
bool MenuExporter::handle(const char* client, App::ItemId id, PanelEvent kind)
{
    if (kind == PanelEvent::closed)
        sendLayoutsUpdated(panels.closed(id));
    if (!itemAlone(id))
        return false;
    if (kind == PanelEvent::clicked)
        click(client, id);
    if (kind == PanelEvent::opened) {
        open(id);
        sendLayoutsUpdated(panels.opened(client, id));
    }
    return true;
}

// Posts the choice, so that the panel gets its reply before any slow operation.
void MenuExporter::click(const char* client, App::ItemId id)
{
    const auto* item = accordion.is(client) ? callbacks.menu.itemWithId(id) : nullptr;
    if (item != nullptr && accordion.choose(*item)) {
        ++revision;
        sendLayoutsUpdated({App::kStatusMenuId});
    }
    callbacks.post([this, id] { choose(id); });
}

// Sends the state again if nothing has changed, since some panels tick a clicked item by themselves.
void MenuExporter::choose(App::ItemId id)
{
    const auto before = revision;
    callbacks.choose(id);
    const auto item = itemAlone(id);
    if (revision != before || !item || item->properties->mark == App::Mark::none || !canSend())
        return;
    isStale = sendItemUpdates({{id, {{"toggle-state", std::int32_t{item->properties->on ? 1 : 0}}}, {}}}) < 0;
}

} // namespace Kest::StatusNotifier
