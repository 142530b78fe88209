// A request of any bytes: parsed or refused, and a path of any bytes finds an item or a reason; every reply
// is one line of valid JSON.
#include "app/ItemPath.h"
#include "fuzz/Input.h"
#include "platform/control/ItemJson.h"
#include "platform/control/Request.h"

#include <nlohmann/json.hpp>

namespace {

using namespace Kest;
using Fuzz::require;

App::ItemSnapshot menuOf(Fuzz::Input& input, int depth)
{
    App::ItemSnapshot menu;
    for (int items = input.below(4); items > 0 && !input.isEmpty(); --items) {
        auto item = depth > 0 ? menuOf(input, depth - 1) : App::ItemSnapshot();
        const int state = input.byte();
        item.properties = App::ItemProperties{.title = input.text(static_cast<std::size_t>(input.below(6))),
                                              .mark = (state & 16) == 0 ? App::Mark::none : App::Mark::radio,
                                              .enabled = (state & 1) == 0,
                                              .hidden = (state & 2) != 0,
                                              .separator = (state & 12) == 12};
        item.hasSubmenu = !item.items.empty();
        menu.items.push_back(std::move(item));
    }
    menu.hasSubmenu = true;
    return menu;
}

void checkReply(const std::string& reply)
{
    require(reply.find('\n') == reply.size() - 1);
    require(nlohmann::json::accept(reply));
}

void checkPath(const App::ItemSnapshot& menu, const std::string& path)
{
    const auto found = App::findByPath(menu, path);
    require((found.item == nullptr) == !found.error.empty());
    checkReply(found.item == nullptr ? Control::errorReply(found.error, found.nearest)
                                     : Control::itemReply(*found.item, found.path));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Fuzz::Input input(data, size);
    const auto menu = menuOf(input, 2);
    const auto line = input.rest();
    const auto [request, error] = Control::parseRequest(line);
    require(request.has_value() == error.empty());
    checkReply(request ? Control::menuReply(menu) : Control::errorReply(error));
    checkPath(menu, line);
    if (request)
        checkPath(menu, request->path);
    for (const auto& [item, path] : App::namedItems(menu))
        require(App::findByPath(menu, path).item != nullptr || path.find(" > ") != std::string::npos ||
                path.empty() || path.find('#') != std::string::npos);
    return 0;
}
