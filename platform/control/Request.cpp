#include "platform/control/Request.h"

#include <map>
#include <nlohmann/json.hpp>

namespace Kest::Control {
namespace {

using Json = nlohmann::json;

const std::map<std::string_view, Request::Command> kCommands = {
    {"menu", Request::Command::menu},
    {"get", Request::Command::get},
    {"choose", Request::Command::choose},
    {"watch", Request::Command::watch},
};

// Drops nested values, which have no meaning, while parsing: no nesting depth uses memory.
Json parse(std::string_view line)
{
    const auto isShallow = [](int depth, Json::parse_event_t event, const Json&) {
        return depth == 0 ||
               (event != Json::parse_event_t::object_start && event != Json::parse_event_t::array_start);
    };
    return Json::parse(line.begin(), line.end(), isShallow, false);
}

const std::string* textMember(const Json& object, const char* name)
{
    const auto found = object.find(name);
    return found == object.end() ? nullptr : found->get_ptr<const std::string*>();
}

} // namespace

ParsedRequest parseRequest(std::string_view line)
{
    const auto object = parse(line);
    if (!object.is_object())
        return {{}, "the request is not a JSON object"};
    const auto* command = textMember(object, "command");
    const auto found = command == nullptr ? kCommands.end() : kCommands.find(*command);
    if (found == kCommands.end())
        return {{}, "\"command\" must be \"menu\", \"get\", \"choose\" or \"watch\""};
    Request request{.command = found->second, .path = {}};
    if (request.command == Request::Command::get || request.command == Request::Command::choose) {
        const auto* path = textMember(object, "path");
        if (path == nullptr || path->empty())
            return {{}, "\"path\" must be the path of an item"};
        request.path = *path;
    }
    const auto yes = object.find("yes");
    request.confirmed = yes != object.end() && yes->is_boolean() && yes->get<bool>();
    return {request, {}};
}

} // namespace Kest::Control
