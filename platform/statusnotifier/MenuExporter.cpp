#include "platform/statusnotifier/MenuExporter.h"

#include "log/Log.h"

#include <cstring>
#include <set>
#include <utility>

namespace Kest::StatusNotifier {
namespace {

constexpr char kInterface[] = "com.canonical.dbusmenu";
constexpr std::uint32_t kVersion = 3;
constexpr std::uint64_t kMaxQueued = 16; // messages; the socket takes hundreds before one is queued

// Some panels give a whole method up for good after an error of the general kind.
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

int getVersion(sd_bus*, const char*, const char*, const char*, sd_bus_message* reply, void*, sd_bus_error*)
{
    return sd_bus_message_append(reply, "u", kVersion);
}

int getText(sd_bus*, const char*, const char*, const char* name, sd_bus_message* reply, void*, sd_bus_error*)
{
    return sd_bus_message_append(reply, "s", std::string_view(name) == "TextDirection" ? "ltr" : "normal");
}

int getIconThemePath(sd_bus*, const char*, const char*, const char*, sd_bus_message* reply, void*,
                     sd_bus_error*)
{
    return appendStrings(reply, {});
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
    SD_BUS_PROPERTY("Version", "u", getVersion, 0, SD_BUS_VTABLE_PROPERTY_CONST),
    SD_BUS_PROPERTY("TextDirection", "s", getText, 0, SD_BUS_VTABLE_PROPERTY_CONST),
    SD_BUS_PROPERTY("Status", "s", getText, 0, SD_BUS_VTABLE_PROPERTY_CONST),
    SD_BUS_PROPERTY("IconThemePath", "as", getIconThemePath, 0, SD_BUS_VTABLE_PROPERTY_CONST),
    SD_BUS_SIGNAL("ItemsPropertiesUpdated", "a(ia{sv})a(ias)", 0),
    SD_BUS_SIGNAL("LayoutUpdated", "ui", 0),
    SD_BUS_SIGNAL("ItemActivationRequested", "iu", 0),
    SD_BUS_VTABLE_END,
};
// clang-format on

template <typename Append>
int sendPropertiesUpdated(sd_bus* bus, Append append)
{
    sd_bus_message* made = nullptr;
    int result = sd_bus_message_new_signal(bus, &made, kMenuPath, kInterface, "ItemsPropertiesUpdated");
    const MessagePtr owner(made);
    if (result >= 0)
        result = append(made);
    return result < 0 ? result : sd_bus_send(bus, made, nullptr);
}

void collectIds(const App::ItemSnapshot& item, std::vector<App::ItemId>& ids)
{
    ids.push_back(item.id);
    for (const auto& child : item.items)
        collectIds(child, ids);
}

} // namespace

MenuExporter::MenuExporter(sd_bus* onBus, MenuQuestions questions) : bus(onBus), ask(std::move(questions))
{
    sd_bus_slot* added = nullptr;
    exportResult = sd_bus_add_object_vtable(bus, &added, kMenuPath, kInterface, kMethods, this);
    slot.reset(added);
}

void MenuExporter::menuChanged(const App::MenuChanges& changes)
{
    const auto updates = itemUpdates(changes, ask.menu);
    if (updates.empty() && changes.menus.empty())
        return;
    ++revision;
    if (!isReading())
        return;
    int result = updates.empty() ? 0 : sendItemUpdates(updates);
    for (const auto& [parent, reshape] : changes.menus)
        if (result >= 0)
            result = sendLayoutUpdated(parent);
    isStale = result < 0;
}

// Once too much is queued, nothing more is until all of it is sent.
bool MenuExporter::isReading()
{
    isStale = isStale || queuedMessages() > kMaxQueued;
    return !isStale;
}

std::uint64_t MenuExporter::queuedMessages() const
{
    std::uint64_t queued = 0;
    return sd_bus_get_n_queued_write(bus, &queued) < 0 ? kMaxQueued + 1 : queued;
}

// Some panels read only the menu that a signal names, and not its submenus.
void MenuExporter::catchUp()
{
    if (!isStale || queuedMessages() > 0)
        return;
    isStale = false;
    ++revision;
    const auto menu = takeSnapshot(ask.menu);
    int result =
        sendPropertiesUpdated(bus, [&](sd_bus_message* message) { return appendWholeMenu(message, menu); });
    for (const auto& item : menu.items)
        if (result >= 0 && item.hasSubmenu)
            result = sendLayoutUpdated(item.id);
    if (result >= 0)
        result = sendLayoutUpdated(App::kStatusMenuId);
    if (result < 0)
        Lct::Log(Lct::eLogWarning, "tray", "panels may show an old menu: %s", std::strerror(-result));
}

int MenuExporter::sendItemUpdates(const std::vector<ItemUpdate>& items)
{
    return sendPropertiesUpdated(bus, [&](sd_bus_message* message) { return appendUpdates(message, items); });
}

int MenuExporter::sendLayoutUpdated(App::ItemId parent)
{
    return sd_bus_emit_signal(bus, kMenuPath, kInterface, "LayoutUpdated", "ui", revision, parent);
}

int MenuExporter::getLayout(sd_bus_message* call)
{
    App::ItemId parent = 0;
    int depth = 0;
    if (const int failed = sd_bus_message_read(call, "ii", &parent, &depth); failed < 0)
        return failed;
    const auto item = takeSnapshot(ask.menu, parent, depth);
    if (!item)
        return unknownId(call, parent);
    return reply(call, [&](sd_bus_message* answer) {
        const int result = sd_bus_message_append(answer, "u", revision);
        return result < 0 ? result : appendLayout(answer, layoutOf(*item));
    });
}

// Without ids, all items. Unknown ids are left out.
int MenuExporter::getGroupProperties(sd_bus_message* call)
{
    std::vector<App::ItemId> ids;
    if (const int failed = readIds(call, ids); failed < 0)
        return failed;
    if (ids.empty())
        collectIds(takeSnapshot(ask.menu), ids);
    return reply(call, [&](sd_bus_message* answer) {
        return appendContainer(answer, SD_BUS_TYPE_ARRAY, "(ia{sv})", [&] {
            return appendEach(ids, [&](App::ItemId id) {
                const auto item = itemAlone(id);
                return item ? appendItem(answer, id, itemProperties(*item)) : 0;
            });
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
    MenuEvents events;
    if (const int failed = readEvent(call, events); failed < 0)
        return failed;
    const auto [id, kind] = events.front();
    if (!itemAlone(id))
        return unknownId(call, id);
    handle(id, kind);
    return sd_bus_reply_method_return(call, "");
}

// Each distinct event is handled once, however often a group contains it. A malformed group has no effect.
int MenuExporter::eventGroup(sd_bus_message* call)
{
    MenuEvents events;
    if (const int failed = readEvents(call, events); failed < 0)
        return failed;
    std::set<std::pair<App::ItemId, MenuEvent>> handled;
    std::set<App::ItemId> unknown;
    for (const auto& [id, kind] : events) {
        if (!itemAlone(id))
            unknown.insert(id);
        else if (handled.emplace(id, kind).second)
            handle(id, kind);
    }
    return reply(call, [&](sd_bus_message* answer) {
        return appendIds(answer, {unknown.begin(), unknown.end()});
    });
}

int MenuExporter::aboutToShow(sd_bus_message* call)
{
    App::ItemId id = 0;
    if (const int failed = sd_bus_message_read(call, "i", &id); failed < 0)
        return failed;
    if (!itemAlone(id))
        return unknownId(call, id);
    return sd_bus_reply_method_return(call, "b", open(id) ? 1 : 0);
}

int MenuExporter::aboutToShowGroup(sd_bus_message* call)
{
    std::vector<App::ItemId> ids;
    if (const int failed = readIds(call, ids); failed < 0)
        return failed;
    std::vector<App::ItemId> changed;
    std::vector<App::ItemId> unknown;
    for (const auto id : ids) {
        if (!itemAlone(id))
            unknown.push_back(id);
        else if (open(id))
            changed.push_back(id);
    }
    return reply(call, [&](sd_bus_message* answer) {
        const int result = appendIds(answer, changed);
        return result < 0 ? result : appendIds(answer, unknown);
    });
}

bool MenuExporter::open(App::ItemId id) const
{
    const auto before = revision;
    ask.menuWillOpen(id);
    return revision != before;
}

// The panel gets its reply before anything is done that takes time.
void MenuExporter::handle(App::ItemId id, MenuEvent kind)
{
    if (kind == MenuEvent::clicked)
        ask.post([this, id] { choose(id); });
    else if (kind == MenuEvent::opened)
        open(id);
}

// Some panels tick what is clicked by themselves: when nothing has changed, the state is sent again.
void MenuExporter::choose(App::ItemId id)
{
    const auto before = revision;
    ask.choose(id);
    const auto item = itemAlone(id);
    if (revision != before || !item || item->properties->mark == App::Mark::none || !isReading())
        return;
    isStale = sendItemUpdates({{id, {{"toggle-state", std::int32_t{item->properties->on ? 1 : 0}}}, {}}}) < 0;
}

} // namespace Kest::StatusNotifier
