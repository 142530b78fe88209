#include "platform/control/ItemJson.h"

#include "app/About.h"
#include "platform/control/Request.h"
#include "text/Printable.h"

#include <unistd.h>
#include <unordered_map>

namespace Kest::Control {
namespace {

using Paths = std::unordered_map<const App::ItemSnapshot*, std::string>;

/// A JSON object written directly as text: a tree of values takes ten times the memory for thousands of
/// encodings. Texts must be printable UTF-8.
class Object {
public:
    Object& text(const char* name, std::string_view value)
    {
        begin(name) += '"';
        for (const char c : value)
            (c == '"' || c == '\\' ? json += '\\' : json) += c;
        json += '"';
        return *this;
    }
    Object& flag(const char* name, bool value) { return nested(name, value ? "true" : "false"); }
    Object& number(const char* name, int value) { return nested(name, std::to_string(value)); }
    Object& nested(const char* name, std::string_view value)
    {
        begin(name) += value;
        return *this;
    }
    std::string end() { return json + "}"; }
    std::string endLine() { return json + "}\n"; }

private:
    std::string& begin(const char* name)
    {
        return json.append(json.size() > 1 ? ",\"" : "\"").append(name).append("\":");
    }

    std::string json = "{";
};

Object fields(App::ItemId id, const App::ItemProperties& item, const std::string& path)
{
    Object object;
    if (item.separator)
        return object.flag("separator", true);
    object.number("id", id).text("path", path).text("label", Text::printable(plainLabel(item)));
    object.flag("enabled", item.enabled);
    if (item.mark != App::Mark::none)
        object.text("mark", item.mark == App::Mark::radio ? "radio" : "check").flag("on", item.on);
    if (item.red)
        object.flag("available", false);
    if (item.encoding && item.encoding->percent)
        object.number("percent", *item.encoding->percent);
    if (item.encoding)
        object.flag("failed", item.encoding->failed);
    return object;
}

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
    auto object = fields(item.id, *item.properties, path == paths.end() ? "" : path->second);
    if (item.hasSubmenu)
        object.nested("items", itemsText(item, paths));
    return object.end();
}

Paths pathsIn(const App::ItemSnapshot& menu, const std::string& prefix)
{
    Paths paths;
    for (auto& [item, path] : App::namedItems(menu))
        paths.emplace(item, prefix + path);
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
    return Object()
        .text("agent", App::about().name)
        .text("version", App::about().version)
        .number("protocol", kProtocol)
        .number("process", getpid())
        .endLine();
}

std::string menuReply(const App::ItemSnapshot& statusMenu)
{
    const auto items = itemsText(statusMenu, pathsIn(statusMenu, {}));
    return Object().flag("ok", true).nested("items", items).endLine();
}

std::string itemReply(const App::ItemSnapshot& item, const std::string& path)
{
    auto paths = pathsIn(item, path + std::string(App::kPathSeparator));
    paths.emplace(&item, path);
    return Object().flag("ok", true).nested("item", itemText(item, paths)).endLine();
}

std::string doneReply() { return Object().flag("ok", true).endLine(); }

std::string errorReply(const std::string& error, const std::string& nearest)
{
    Object object;
    object.flag("ok", false).text("error", Text::printable(error));
    if (!nearest.empty())
        object.text("nearest", nearest);
    return object.endLine();
}

std::string eventLine(const App::MenuEvent& event, const App::MenuModel& menu)
{
    Object object;
    object.text("event", kindName(event.kind)).number("id", event.id).text("path", event.path);
    object.text("what", Text::printable(event.what));
    const auto* item = event.kind == App::MenuEvent::Kind::removed ? nullptr : menu.itemWithId(event.id);
    if (item != nullptr)
        object.nested("item", fields(event.id, item->properties(), event.path).end());
    return object.endLine();
}

} // namespace Kest::Control
