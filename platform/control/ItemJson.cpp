#include "platform/control/ItemJson.h"

#include "app/About.h"
#include "app/Utf8.h"
#include "platform/control/Request.h"

#include <nlohmann/json.hpp>
#include <unistd.h>
#include <unordered_map>

namespace Kest::Control {
namespace {

using Json = nlohmann::ordered_json;
using Paths = std::unordered_map<const App::ItemSnapshot*, std::string>;

std::string dumped(const Json& value) { return value.dump(-1, ' ', false, Json::error_handler_t::replace); }

std::string line(const Json& value) { return dumped(value) + "\n"; }

/// `object` with one more member, whose value is JSON already. `object` must not be empty.
std::string with(const Json& object, const char* name, const std::string& value)
{
    auto text = dumped(object);
    text.pop_back();
    return text.append(",\"").append(name).append("\":").append(value).append("}");
}

Json fields(App::ItemId id, const App::ItemProperties& item, const std::string& path)
{
    if (item.separator)
        return {{"separator", true}};
    Json object = {
        {"id", id}, {"path", path}, {"label", App::printable(plainLabel(item))}, {"enabled", item.enabled}};
    if (item.mark != App::Mark::none) {
        object["mark"] = item.mark == App::Mark::radio ? "radio" : "check";
        object["on"] = item.on;
    }
    if (item.red)
        object["available"] = false;
    if (item.view && item.view->percent)
        object["percent"] = *item.view->percent;
    if (item.view)
        object["failed"] = item.view->failed;
    return object;
}

// Written as text at once: as a tree of values, thousands of encodings take ten times the memory.
std::string itemText(const App::ItemSnapshot& item, const Paths& paths);

std::string itemsText(const App::ItemSnapshot& menu, const Paths& paths)
{
    std::string text = "[";
    for (const auto& item : menu.items)
        if (!item.properties->hidden)
            text.append(text.size() > 1 ? "," : "").append(itemText(item, paths));
    return text + "]";
}

std::string itemText(const App::ItemSnapshot& item, const Paths& paths)
{
    const auto path = paths.find(&item);
    const auto object = fields(item.id, *item.properties, path == paths.end() ? "" : path->second);
    return item.hasSubmenu ? with(object, "items", itemsText(item, paths)) : dumped(object);
}

Paths pathsIn(const App::ItemSnapshot& menu, const std::string& above)
{
    Paths paths;
    for (auto& [item, path] : App::namedItems(menu))
        paths.emplace(item, above + path);
    return paths;
}

const char* kindName(App::MenuEvent::Kind kind)
{
    if (kind == App::MenuEvent::Kind::changed)
        return "changed";
    return kind == App::MenuEvent::Kind::added ? "added" : "removed";
}

} // namespace

std::string greeting()
{
    return line({{"agent", App::about().name},
                 {"version", App::about().version},
                 {"protocol", kProtocol},
                 {"process", getpid()}});
}

std::string menuReply(const App::ItemSnapshot& statusMenu)
{
    return with({{"ok", true}}, "items", itemsText(statusMenu, pathsIn(statusMenu, {}))) + "\n";
}

std::string itemReply(const App::ItemSnapshot& item, const std::string& path)
{
    auto paths = pathsIn(item, path + std::string(App::kPathSeparator));
    paths.emplace(&item, path);
    return with({{"ok", true}}, "item", itemText(item, paths)) + "\n";
}

std::string doneReply() { return line({{"ok", true}}); }

std::string errorReply(const std::string& error, const std::string& nearest)
{
    Json object = {{"ok", false}, {"error", App::printable(error)}};
    if (!nearest.empty())
        object["nearest"] = nearest;
    return line(object);
}

std::string eventLine(const App::MenuEvent& event, const App::MenuModel& menu)
{
    const Json object = {{"event", kindName(event.kind)},
                         {"id", event.id},
                         {"path", event.path},
                         {"what", App::printable(event.what)}};
    const auto* item = event.kind == App::MenuEvent::Kind::removed ? nullptr : menu.itemWithId(event.id);
    if (item == nullptr)
        return line(object);
    return with(object, "item", dumped(fields(event.id, item->properties(), event.path))) + "\n";
}

} // namespace Kest::Control
