#include "platform/statusnotifier/MenuExporter.h"

#include <utility>

namespace Kest::StatusNotifier {
namespace {

constexpr char kInterface[] = "com.canonical.dbusmenu";
constexpr std::uint32_t kVersion = 3;

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

/// The integers of an array at the place where a message is being read.
std::vector<App::ItemId> readIds(sd_bus_message* message)
{
    std::vector<App::ItemId> ids;
    if (sd_bus_message_enter_container(message, SD_BUS_TYPE_ARRAY, "i") <= 0)
        return ids;
    for (App::ItemId id = 0; sd_bus_message_read(message, "i", &id) > 0;)
        ids.push_back(id);
    sd_bus_message_exit_container(message);
    return ids;
}

int appendIds(sd_bus_message* message, const std::vector<App::ItemId>& ids)
{
    return sd_bus_message_append_array(message, 'i', ids.data(), ids.size() * sizeof(App::ItemId));
}

MessagePtr replyTo(sd_bus_message* call)
{
    sd_bus_message* reply = nullptr;
    sd_bus_message_new_method_return(call, &reply);
    return MessagePtr(reply);
}

MessagePtr newSignal(sd_bus* bus, const char* name)
{
    sd_bus_message* signal = nullptr;
    sd_bus_message_new_signal(bus, &signal, kMenuPath, kInterface, name);
    return MessagePtr(signal);
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
    if (!updates.empty())
        sendItemUpdates(updates);
    for (const auto& [parent, reshape] : changes.menus)
        sendLayoutUpdated(parent);
}

void MenuExporter::sendItemUpdates(const std::vector<ItemUpdate>& items)
{
    const auto signal = newSignal(bus, "ItemsPropertiesUpdated");
    auto* message = signal.get();
    sd_bus_message_open_container(message, SD_BUS_TYPE_ARRAY, "(ia{sv})");
    for (const auto& item : items) {
        if (item.updated.empty())
            continue;
        sd_bus_message_open_container(message, SD_BUS_TYPE_STRUCT, "ia{sv}");
        sd_bus_message_append(message, "i", item.id);
        appendProperties(message, item.updated);
        sd_bus_message_close_container(message);
    }
    sd_bus_message_close_container(message);
    sd_bus_message_open_container(message, SD_BUS_TYPE_ARRAY, "(ias)");
    for (const auto& item : items) {
        if (item.removed.empty())
            continue;
        sd_bus_message_open_container(message, SD_BUS_TYPE_STRUCT, "ias");
        sd_bus_message_append(message, "i", item.id);
        appendStrings(message, item.removed);
        sd_bus_message_close_container(message);
    }
    sd_bus_message_close_container(message);
    sd_bus_send(bus, message, nullptr);
}

void MenuExporter::sendLayoutUpdated(App::ItemId parent)
{
    sd_bus_emit_signal(bus, kMenuPath, kInterface, "LayoutUpdated", "ui", revision, parent);
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
    const auto reply = replyTo(call);
    sd_bus_message_append(reply.get(), "u", revision);
    appendLayout(reply.get(), layoutOf(*item));
    return sd_bus_send(bus, reply.get(), nullptr);
}

// Without ids, all items. Ids that have gone in the meantime are left out.
int MenuExporter::getGroupProperties(sd_bus_message* call)
{
    auto ids = readIds(call);
    if (ids.empty())
        collectIds(takeSnapshot(ask.menu), ids);
    const auto reply = replyTo(call);
    sd_bus_message_open_container(reply.get(), SD_BUS_TYPE_ARRAY, "(ia{sv})");
    for (const auto id : ids) {
        const auto item = itemAlone(id);
        if (!item)
            continue;
        sd_bus_message_open_container(reply.get(), SD_BUS_TYPE_STRUCT, "ia{sv}");
        sd_bus_message_append(reply.get(), "i", id);
        appendProperties(reply.get(), itemProperties(*item));
        sd_bus_message_close_container(reply.get());
    }
    sd_bus_message_close_container(reply.get());
    return sd_bus_send(bus, reply.get(), nullptr);
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
    const auto reply = replyTo(call);
    appendVariant(reply.get(), found->second);
    return sd_bus_send(bus, reply.get(), nullptr);
}

int MenuExporter::event(sd_bus_message* call)
{
    App::ItemId id = 0;
    const char* name = nullptr;
    if (const int failed = sd_bus_message_read(call, "is", &id, &name); failed < 0)
        return failed;
    if (!handle(id, name))
        return unknownId(call, id);
    return sd_bus_reply_method_return(call, "");
}

int MenuExporter::eventGroup(sd_bus_message* call)
{
    std::vector<App::ItemId> unknown;
    int result = sd_bus_message_enter_container(call, SD_BUS_TYPE_ARRAY, "(isvu)");
    while (result > 0 && (result = sd_bus_message_enter_container(call, SD_BUS_TYPE_STRUCT, "isvu")) > 0) {
        App::ItemId id = 0;
        const char* name = nullptr;
        sd_bus_message_read(call, "is", &id, &name);
        sd_bus_message_skip(call, "vu");
        result = sd_bus_message_exit_container(call);
        if (!handle(id, name))
            unknown.push_back(id);
    }
    if (result < 0)
        return result;
    const auto reply = replyTo(call);
    appendIds(reply.get(), unknown);
    return sd_bus_send(bus, reply.get(), nullptr);
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
    std::vector<App::ItemId> changed;
    std::vector<App::ItemId> unknown;
    for (const auto id : readIds(call)) {
        if (!itemAlone(id))
            unknown.push_back(id);
        else if (open(id))
            changed.push_back(id);
    }
    const auto reply = replyTo(call);
    appendIds(reply.get(), changed);
    appendIds(reply.get(), unknown);
    return sd_bus_send(bus, reply.get(), nullptr);
}

bool MenuExporter::open(App::ItemId id) const
{
    const auto before = revision;
    ask.menuWillOpen(id);
    return revision != before;
}

bool MenuExporter::handle(App::ItemId id, const std::string& eventName)
{
    if (!itemAlone(id))
        return false;
    if (eventName == "clicked") // the panel has its answer before anything is done that takes time
        ask.post([this, id] { choose(id); });
    else if (eventName == "opened")
        open(id);
    return true;
}

// Some panels tick what is clicked by themselves: where nothing has changed they are told the truth again.
void MenuExporter::choose(App::ItemId id)
{
    const auto before = revision;
    ask.choose(id);
    const auto item = itemAlone(id);
    if (revision == before && item && item->properties->mark != App::Mark::none)
        sendItemUpdates({{id, {{"toggle-state", std::int32_t{item->properties->on ? 1 : 0}}}, {}}});
}

} // namespace Kest::StatusNotifier
