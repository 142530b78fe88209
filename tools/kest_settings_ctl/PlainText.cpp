#include "tools/kest_settings_ctl/PlainText.h"

#include <nlohmann/json.hpp>

namespace KestSettingsCtl {
namespace {

template <typename Value>
Value member(const Json& object, const char* name, Value defaultValue)
{
    const auto found = object.find(name);
    if (found == object.end())
        return defaultValue;
    const auto* value = found->get_ptr<const Value*>();
    return value == nullptr ? defaultValue : *value;
}

std::string text(const Json& object, const char* name) { return member(object, name, std::string()); }
bool flag(const Json& object, const char* name, bool defaultValue = false)
{
    return member(object, name, defaultValue);
}

const Json& itemsOf(const Json& item)
{
    static const Json none = Json::array();
    const auto found = item.find("items");
    return found != item.end() && found->is_array() ? *found : none;
}

std::string markText(const Json& item)
{
    const bool on = flag(item, "on");
    const auto mark = text(item, "mark");
    if (mark == "radio")
        return on ? "(x) " : "( ) ";
    if (mark == "check")
        return on ? "[x] " : "[ ] ";
    return "";
}

std::string greyedText(const Json& item) { return flag(item, "enabled", true) ? "" : " (greyed)"; }

std::string linesOf(const Json& items, const std::string& indent)
{
    std::string lines;
    for (const auto& item : items) {
        const auto line =
            flag(item, "separator") ? "--------" : markText(item) + text(item, "label") + greyedText(item);
        lines += indent + line + "\n" + linesOf(itemsOf(item), indent + "  ");
    }
    return lines;
}

} // namespace

std::string menuText(const Json& items) { return linesOf(items, ""); }

std::string itemText(const Json& item)
{
    std::string state;
    if (const auto percent = item.find("percent"); percent != item.end() && percent->is_number_integer())
        state = "  " + percent->dump() + "%";
    if (!flag(item, "available", true))
        state += " (not available)";
    return markText(item) + text(item, "path") + state + greyedText(item) + "\n" +
           linesOf(itemsOf(item), "  ");
}

std::string pathsText(const Json& items)
{
    std::string lines;
    for (const auto& item : items) {
        const bool isSubmenu = item.contains("items");
        if (!isSubmenu && !flag(item, "separator") && flag(item, "enabled", true))
            lines += text(item, "path") + "\n";
        lines += pathsText(itemsOf(item));
    }
    return lines;
}

std::string eventText(const Json& event)
{
    const auto what = text(event, "what");
    return text(event, "event") + " " + text(event, "path") + (what.empty() ? "" : ": " + what) + "\n";
}

std::string errorText(const Json& reply)
{
    const auto nearest = text(reply, "nearest");
    return text(reply, "error") + (nearest.empty() ? "" : "; did you mean \"" + nearest + "\"?");
}

} // namespace KestSettingsCtl
