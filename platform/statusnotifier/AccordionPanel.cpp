#include "platform/statusnotifier/AccordionPanel.h"

#include <algorithm>

namespace Kest::StatusNotifier {
namespace {

constexpr char kSubmenu[] = "children-display";

bool isNested(const App::MenuItem& item) { return item.parentItem() != nullptr; }

// Doubles only the first underscore that another character follows.
std::string withOneMnemonic(const std::string& escaped)
{
    std::string label;
    for (std::size_t i = 0; i < escaped.size(); i += escaped[i] == '_' ? 2 : 1)
        label += escaped[i];
    auto first = label.find('_');
    while (first + 1 < label.size() && label[first + 1] == '_')
        ++first;
    if (first != std::string::npos && first + 1 < label.size())
        label.insert(first, 1, '_');
    return label;
}

void adaptLabel(Properties& properties)
{
    if (const auto label = properties.find("label"); label != properties.end())
        label->second = withOneMnemonic(std::get<std::string>(label->second));
}

void adaptLabels(Layout& layout)
{
    adaptLabel(layout.properties);
    for (auto& child : layout.children)
        adaptLabels(child);
}

} // namespace

void AccordionPanel::recordRequest(const std::string& client, const LayoutRequest& request)
{
    if (request.parent == App::kStatusMenuId && request.properties == std::set<std::string>{"type", kSubmenu})
        name = client;
}

Layout AccordionPanel::layout(const App::MenuModel& menu) const
{
    constexpr int kLevels = 2;
    auto whole = layoutOf(*takeSnapshot(menu, App::kStatusMenuId, kLevels));
    for (auto& item : whole.children)
        for (auto& row : item.children)
            row.properties.erase(kSubmenu);
    adaptLabels(whole);
    const auto* entry = menu.itemWithId(chosen);
    if (entry == nullptr || !isNested(*entry))
        return whole;
    std::vector<Layout> rows;
    for (const auto& item : entry->submenu()->itemArray())
        rows.push_back({item->id(), properties(*item), {}});
    const auto owner = std::ranges::find(whole.children, entry->parentItem()->id(), &Layout::id);
    whole.children.insert(std::next(owner), rows.begin(), rows.end());
    return whole;
}

Properties AccordionPanel::properties(const App::MenuItem& item)
{
    auto properties = itemProperties({item.id(), item.sharedProperties(), item.submenu() != nullptr, {}});
    if (isNested(item))
        properties.erase(kSubmenu);
    if (isNested(item) && isNested(*item.parentItem()))
        properties["label"] =
            escapedLabel(itemName(item.parentItem()->properties()) + ": " + plainLabel(item.properties()));
    adaptLabel(properties);
    return properties;
}

std::vector<ItemUpdate> AccordionPanel::corrections(const std::vector<ItemUpdate>& updates) const
{
    std::vector<ItemUpdate> corrected;
    for (const auto& update : updates) {
        const auto label = update.updated.find("label");
        if (name.empty() || label == update.updated.end())
            continue;
        Properties adapted{*label};
        adaptLabel(adapted);
        if (adapted["label"] != label->second)
            corrected.push_back({update.id, adapted, {}});
    }
    return corrected;
}

bool AccordionPanel::choose(const App::MenuItem& item)
{
    if (!isNested(item) || item.submenu() == nullptr)
        return false;
    chosen = item.id();
    return true;
}

} // namespace Kest::StatusNotifier
