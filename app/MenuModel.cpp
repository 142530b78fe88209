#include "app/MenuModel.h"

#include <algorithm>
#include <utility>

namespace Kest::App {

std::string plainLabel(const ItemProperties& item)
{
    if (!item.view)
        return item.red ? item.title + " (not available)" : item.title;
    const auto& [name, percentage] = *item.view;
    const auto text = name.empty() ? "Process " + std::to_string(item.tag) : name;
    return percentage.empty() ? text : text + "  " + percentage;
}

MenuItem::~MenuItem() = default;

template <typename Value>
void MenuItem::change(Value& value, Value to)
{
    if (value == to)
        return;
    value = std::move(to);
    if (above != nullptr)
        above->model.changed = true;
}

template void MenuItem::change(bool&, bool);
template void MenuItem::change(int&, int);
template void MenuItem::change(std::optional<EntryView>&, std::optional<EntryView>);

void MenuItem::setSubmenu(std::unique_ptr<Menu> menu)
{
    below = std::move(menu);
    below->owner = this;
    below->model.changed = true;
}

MenuItem* MenuItem::parentItem() const { return above == nullptr ? nullptr : above->owner; }

Menu::~Menu()
{
    for (const auto& item : items)
        model.index.erase(item->identity);
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

int Menu::indexOfItem(const MenuItem& item) const
{
    const auto found = std::ranges::find(items, &item, &std::unique_ptr<MenuItem>::get);
    return found == items.end() ? -1 : static_cast<int>(found - items.begin());
}

MenuItem& Menu::insertItem(std::unique_ptr<MenuItem> item, int index)
{
    auto& inserted = *item;
    inserted.identity = identityFor(inserted);
    inserted.above = this;
    items.insert(items.begin() + index, std::move(item));
    model.index[inserted.identity] = &inserted;
    model.changed = true;
    return inserted;
}

ItemId Menu::identityFor(const MenuItem& item)
{
    const auto same = std::ranges::find_if(removed, [&](const auto& before) {
        const auto& was = before->properties();
        const auto& is = item.properties();
        return was.title == is.title && was.action == is.action && was.separator == is.separator;
    });
    if (same == removed.end())
        return ++model.lastId;
    const auto identity = (*same)->identity;
    removed.erase(same);
    return identity;
}

std::unique_ptr<MenuItem> Menu::removeItem(const MenuItem& item)
{
    const auto position = items.begin() + indexOfItem(item);
    auto taken = std::move(*position);
    items.erase(position);
    model.index.erase(taken->identity);
    taken->above = nullptr;
    model.changed = true;
    return taken;
}

void Menu::removeAllItems()
{
    removed = std::exchange(items, {});
    for (const auto& item : removed) {
        model.index.erase(item->identity);
        item->above = nullptr;
        model.changed = true;
    }
}

std::unique_ptr<Menu> Menu::copy() const
{
    auto copied = std::make_unique<Menu>(model);
    for (const auto& item : items) {
        auto& twin = copied->addItem(std::make_unique<MenuItem>(item->properties()));
        if (item->submenu() != nullptr)
            twin.setSubmenu(item->submenu()->copy());
    }
    return copied;
}

MenuItem* MenuModel::itemWithId(ItemId id) const
{
    const auto found = index.find(id);
    if (found == index.end())
        return nullptr;
    const Menu* top = found->second->menu();
    while (top != nullptr && top->ownerItem() != nullptr)
        top = top->ownerItem()->menu();
    return top == root.get() ? found->second : nullptr; // not one of a template
}

bool MenuModel::takeChanged() { return std::exchange(changed, false); }

} // namespace Kest::App
