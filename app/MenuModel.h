// The menu as plain objects: what every front end draws, and the only thing it draws.
#pragma once

#include "app/MenuChanges.h"

#include <deque>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Kest::App {

class Menu;
class MenuItem;
class MenuModel;

/// Main thread only, like the whole model. Lives as long as the menu that it is in.
class MenuItem {
public:
    explicit MenuItem(SharedProperties properties) : seen(std::move(properties)) {}
    ~MenuItem();
    MenuItem(const MenuItem&) = delete;
    MenuItem& operator=(const MenuItem&) = delete;

    ItemId id() const { return identity; }
    const ItemProperties& properties() const { return *seen; }
    const SharedProperties& sharedProperties() const { return seen; }
    const std::string& title() const { return seen->title; }
    int tag() const { return seen->tag; }

    void setState(bool on) { change(&ItemProperties::on, on); }
    void setEnabled(bool enabled) { change(&ItemProperties::enabled, enabled); }
    void setHidden(bool hidden) { change(&ItemProperties::hidden, hidden); }
    void setView(const EntryView& view) { change(&ItemProperties::view, std::optional(view)); }
    void setSubmenu(std::unique_ptr<Menu> menu);

    Menu* submenu() const { return below.get(); }
    /// The menu that the item is in; null while it is in none.
    Menu* menu() const { return above; }
    /// The item whose submenu this one is in; null at the top.
    MenuItem* parentItem() const;

private:
    friend class Menu;
    template <typename Value>
    void change(Value ItemProperties::*property, Value to);
    void noteBefore(MenuJournal& journal) const;
    void noteGoneBelow(MenuJournal& journal) const;

    SharedProperties seen;
    ItemId identity = kStatusMenuId;
    Menu* above = nullptr;
    std::unique_ptr<Menu> below;
};

/// An ordered list of items, which it owns.
class Menu {
public:
    /// The model outlives the menu.
    explicit Menu(MenuModel& ofModel) : model(ofModel) {}
    ~Menu();
    Menu(const Menu&) = delete;
    Menu& operator=(const Menu&) = delete;

    int numberOfItems() const { return static_cast<int>(items.size()); }
    const std::vector<std::unique_ptr<MenuItem>>& itemArray() const { return items; }
    /// The first match from the top; null when there is none.
    MenuItem* itemWithTag(int tag) const;
    MenuItem* itemWithTitle(const std::string& title) const;
    /// -1 for an item of another menu.
    int indexOfItem(const MenuItem& item) const;

    /// `index` is 0 to `numberOfItems()`. An item that takes the place of one that `removeAllItems` has
    /// removed just before, with the same title and action, takes its id too: to those who look it is the
    /// same.
    MenuItem& insertItem(std::unique_ptr<MenuItem> item, int index);
    MenuItem& addItem(std::unique_ptr<MenuItem> item) { return insertItem(std::move(item), numberOfItems()); }
    /// Takes an item of this menu out, alive.
    std::unique_ptr<MenuItem> removeItem(const MenuItem& item);
    void removeAllItems();

    /// A menu of equal items with ids of their own.
    std::unique_ptr<Menu> copy() const;

    /// The item whose submenu this is; null for the status menu and for templates.
    MenuItem* ownerItem() const { return owner; }

private:
    friend class MenuItem;
    ItemId identityFor(const MenuItem& item);
    /// Whether the menu is one that may be seen; templates are not, nor is a menu that is still being made.
    bool isPlaced() const;
    ItemId ownerId() const { return owner == nullptr ? kStatusMenuId : owner->identity; }
    std::vector<ItemId> ids() const;

    MenuModel& model;
    MenuItem* owner = nullptr;
    std::vector<std::unique_ptr<MenuItem>> items;
    std::vector<std::unique_ptr<MenuItem>> removed; // by the last `removeAllItems`, until taken up again
};

/// The status menu with all that is in it.
class MenuModel {
public:
    /// Items get ids from 1 to `maxId`; after that, those that are free again, the oldest first.
    explicit MenuModel(ItemId maxId = std::numeric_limits<ItemId>::max())
        : maxItemId(maxId), root(std::make_unique<Menu>(*this))
    {}
    MenuModel(const MenuModel&) = delete;
    MenuModel& operator=(const MenuModel&) = delete;

    Menu& statusMenu() { return *root; }
    const Menu& statusMenu() const { return *root; }
    /// Null when no item in the status menu or below has the id.
    MenuItem* itemWithId(ItemId id) const;

    /// What has changed since this was last asked.
    MenuChanges takeChanges();
    /// Whether so much has been done since then that it should be asked before more is done.
    bool hasManyChanges() const;

private:
    friend class Menu;
    friend class MenuItem;
    ItemId unusedId();
    /// The first item in the index whose id is not below this one.
    std::deque<MenuItem*>::const_iterator position(ItemId id) const;
    /// The item with the id, in a template too; null when there is none.
    MenuItem* indexed(ItemId id) const;
    void addToIndex(MenuItem& item) { index.insert(position(item.id()), &item); }
    void removeFromIndex(const MenuItem& item) { index.erase(position(item.id())); }

    const ItemId maxItemId;
    ItemId lastId = kStatusMenuId;
    bool reusesIds = false;
    MenuJournal journal;
    std::deque<MenuItem*> index; // by id: ids ascend, and a table takes three times the memory
    std::unique_ptr<Menu> root;
};

} // namespace Kest::App
