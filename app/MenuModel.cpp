#include "app/MenuModel.h"

#include <algorithm>
#include <utility>

namespace Kest::App {

std::string EncodingState::title() const { return failed ? name + " - Failed" : name; }

std::string EncodingState::percentText() const { return percent ? std::to_string(*percent) + "%" : ""; }

std::string itemName(const ItemProperties& item)
{
    const auto title = item.encoding ? item.encoding->title() : item.title;
    return item.encoding && title.empty() ? "Process " + std::to_string(item.tag) : title;
}

std::string plainLabel(const ItemProperties& item)
{
    if (!item.encoding)
        return item.red ? item.title + " (not available)" : item.title;
    return itemName(item) + (item.encoding->percent ? "  " + item.encoding->percentText() : "");
}

MenuItem::~MenuItem() = default;

template <typename Value>
void MenuItem::change(Value ItemProperties::*property, Value to)
{
    if (properties().*property == to)
        return;
    if (parent != nullptr)
        recordState(parent->model.journal);
    props = props.with(property, std::move(to));
}

template void MenuItem::change(bool ItemProperties::*, bool);
template void MenuItem::change(std::optional<EncodingState> ItemProperties::*, std::optional<EncodingState>);

void MenuItem::recordState(MenuJournal& journal) const
{
    journal.itemWillChange(itemId, {props, ownSubmenu != nullptr});
}

void MenuItem::recordSubmenuRemoved(MenuJournal& journal) const
{
    if (ownSubmenu != nullptr)
        for (const auto& item : ownSubmenu->items)
            journal.itemRemoved(itemId, item->itemId, item->props);
}

void MenuItem::setSubmenu(std::unique_ptr<Menu> menu)
{
    auto& journal = menu->model.journal;
    recordState(journal);
    recordSubmenuRemoved(journal);
    ownSubmenu = std::move(menu);
    ownSubmenu->owner = this;
    for (const auto& item : ownSubmenu->items)
        journal.itemAdded(itemId, item->itemId);
}

MenuItem* MenuItem::parentItem() const { return parent == nullptr ? nullptr : parent->owner; }

Menu::~Menu()
{
    for (const auto& item : items)
        model.removeFromIndex(*item);
}

bool Menu::isAttached() const { return owner != nullptr || &model.statusMenu() == this; }

std::vector<ItemId> Menu::ids() const
{
    std::vector<ItemId> found;
    found.reserve(items.size());
    for (const auto& item : items)
        found.push_back(item->itemId);
    return found;
}

MenuItem* Menu::itemWithTag(int tag) const
{
    const auto found = std::ranges::find(items, tag, [](const auto& item) { return item->tag(); });
    return found == items.end() ? nullptr : found->get();
}

MenuItem* Menu::itemWithTitle(const std::string& title) const
{
    const auto found = std::ranges::find(items, title, [](const auto& item) { return item->title(); });
    return found == items.end() ? nullptr : found->get();
}

// Searches from the bottom, where menus with thousands of items grow and are cleared.
int Menu::indexOfItem(const MenuItem& item) const
{
    int index = numberOfItems() - 1;
    while (index >= 0 && items[static_cast<std::size_t>(index)].get() != &item)
        --index;
    return index;
}

MenuItem& Menu::insertItem(std::unique_ptr<MenuItem> item, int index)
{
    auto& inserted = *item;
    inserted.itemId = idFor(inserted);
    inserted.parent = this;
    items.insert(items.begin() + index, std::move(item));
    model.addToIndex(inserted);
    if (isAttached())
        model.journal.itemAdded(ownerId(), inserted.itemId);
    return inserted;
}

ItemId Menu::idFor(const MenuItem& item)
{
    const auto same = std::ranges::find_if(removed, [&](const auto& before) {
        const auto& was = before->properties();
        const auto& is = item.properties();
        return was.title == is.title && was.action == is.action && was.separator == is.separator;
    });
    if (same == removed.end() || model.indexed((*same)->itemId) != nullptr)
        return model.unusedId();
    const auto itemId = (*same)->itemId;
    (*same)->recordState(model.journal);
    (*same)->recordSubmenuRemoved(model.journal);
    removed.erase(same);
    return itemId;
}

std::unique_ptr<MenuItem> Menu::removeItem(const MenuItem& item)
{
    const auto position = items.begin() + indexOfItem(item);
    auto taken = std::move(*position);
    items.erase(position);
    model.removeFromIndex(*taken);
    taken->parent = nullptr;
    if (isAttached())
        model.journal.itemRemoved(ownerId(), taken->itemId, taken->props);
    return taken;
}

void Menu::removeAllItems()
{
    if (isAttached())
        model.journal.menuWillRefill(ownerId(), ids());
    removed = std::exchange(items, {});
    for (const auto& item : removed) {
        model.removeFromIndex(*item);
        item->parent = nullptr;
        if (isAttached())
            model.journal.itemRemoved(ownerId(), item->itemId, item->props);
    }
}

std::unique_ptr<Menu> Menu::copy() const
{
    auto copied = std::make_unique<Menu>(model);
    for (const auto& item : items) {
        auto& twin = copied->addItem(std::make_unique<MenuItem>(item->sharedProperties()));
        if (item->submenu() != nullptr)
            twin.setSubmenu(item->submenu()->copy());
    }
    return copied;
}

std::deque<MenuItem*>::const_iterator MenuModel::position(ItemId id) const
{
    return std::ranges::lower_bound(index, id, {}, &MenuItem::id);
}

MenuItem* MenuModel::indexed(ItemId id) const
{
    const auto found = position(id);
    return found == index.end() || (*found)->id() != id ? nullptr : *found;
}

MenuItem* MenuModel::itemWithId(ItemId id) const
{
    auto* found = indexed(id);
    const Menu* top = found == nullptr ? nullptr : found->menu();
    while (top != nullptr && top->ownerItem() != nullptr)
        top = top->ownerItem()->menu();
    return top == root.get() ? found : nullptr; // not an item of a template
}

bool MenuModel::hasManyChanges() const
{
    constexpr std::size_t kMaxRecords = 2000; // less than 1 MB of records; reached only in a flood
    return journal.recordCount() > kMaxRecords;
}

MenuChanges MenuModel::takeChanges() { return journal.take(*this, reusesIds ? maxItemId : lastId); }

// Terminates, since the menu never has as many items as there are ids.
ItemId MenuModel::unusedId()
{
    do {
        reusesIds = reusesIds || lastId == maxItemId;
        lastId = lastId == maxItemId ? kStatusMenuId + 1 : lastId + 1;
    } while (reusesIds && indexed(lastId) != nullptr);
    return lastId;
}

} // namespace Kest::App
