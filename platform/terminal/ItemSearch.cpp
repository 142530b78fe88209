#include "platform/terminal/ItemSearch.h"

#include "platform/terminal/Cells.h"
#include "platform/terminal/TextMenu.h"

namespace Kest::Terminal {
namespace {

void search(const App::ItemSnapshot& menu, const std::string& menuPath, const std::u32string& part,
            std::vector<SearchMatch>& matches)
{
    for (const auto& item : menu.items) {
        if (!isListed(*item.properties))
            continue;
        const auto name = itemName(*item.properties);
        auto path = menuPath;
        path.append(path.empty() ? "" : kPathSeparator).append(name);
        if (folded(name).find(part) != std::u32string::npos)
            matches.push_back({item.id, path});
        search(item, path, part, matches);
    }
}

} // namespace

std::vector<SearchMatch> findItems(const App::ItemSnapshot& statusMenu, const std::string& part)
{
    std::vector<SearchMatch> matches;
    search(statusMenu, {}, folded(part), matches);
    return matches;
}

} // namespace Kest::Terminal
