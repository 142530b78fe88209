// The menu as plain objects. Front ends draw nothing else.
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

/// Main thread only, like the whole model. Owned by the menu that contains it.
class MenuItem {
public:
    explicit MenuItem(SharedProperties properties) : props(std::move(properties)) {}
    ~MenuItem();
    MenuItem(const MenuItem&) = delete;
    MenuItem& operator=(const MenuItem&) = delete;

    ItemId id() const { return itemId; }
    const ItemProperties& properties() const { return *props; }
    const SharedProperties& sharedProperties() const { return props; }
    const std::string& title() const { return props->title; }
    int tag() const { return props->tag; }

    void setState(bool on) { change(&ItemProperties::on, on); }
    void setEnabled(bool enabled) { change(&ItemProperties::enabled, enabled); }
    void setHidden(bool hidden) { change(&ItemProperties::hidden, hidden); }
    void setView(const EntryView& view) { change(&ItemProperties::view, std::optional(view)); }
    void setSubmenu(std::unique_ptr<Menu> menu);

    Menu* submenu() const { return ownSubmenu.get(); }
    /// Returns the menu that contains the item; null if there is none.
    Menu* menu() const { return parent; }
    /// Returns the item whose submenu contains this one; null at the top level.
    MenuItem* parentItem() const;

private:
    friend class Menu;
    template <typename Value>
    void change(Value ItemProperties::*property, Value to);
    void recordState(MenuJournal& journal) const;
    void recordSubmenuRemoved(MenuJournal& journal) const;

    SharedProperties props;
    ItemId itemId = kStatusMenuId;
    Menu* parent = nullptr;
    std::unique_ptr<Menu> ownSubmenu;
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
    /// Each returns the first match from the top; null if there is none.
    MenuItem* itemWithTag(int tag) const;
    MenuItem* itemWithTitle(const std::string& title) const;
    /// Returns the item's index; -1 for an item of another menu.
    int indexOfItem(const MenuItem& item) const;

    /// Inserts an item at `index`, 0 to `numberOfItems()`, and gives it an id. If the last `removeAllItems`
    /// removed an item with the same title and action, the new item gets its id and counts as the same item.
    MenuItem& insertItem(std::unique_ptr<MenuItem> item, int index);
    MenuItem& addItem(std::unique_ptr<MenuItem> item) { return insertItem(std::move(item), numberOfItems()); }
    /// Removes an item of this menu and returns it.
    std::unique_ptr<MenuItem> removeItem(const MenuItem& item);
    void removeAllItems();

    /// Returns a menu with copies of all items and their submenus; the copies have new ids.
    std::unique_ptr<Menu> copy() const;

    /// Returns the item whose submenu this is; null for the status menu and for templates.
    MenuItem* ownerItem() const { return owner; }

private:
    friend class MenuItem;
    ItemId idFor(const MenuItem& item);
    /// Returns whether the menu is the status menu or has an owner item. Templates and menus under
    /// construction are not attached.
    bool isAttached() const;
    ItemId ownerId() const { return owner == nullptr ? kStatusMenuId : owner->itemId; }
    std::vector<ItemId> ids() const;

    MenuModel& model;
    MenuItem* owner = nullptr;
    std::vector<std::unique_ptr<MenuItem>> items;
    std::vector<std::unique_ptr<MenuItem>> removed; // by the last `removeAllItems`; ids can be reused
};

/// Contains the status menu with all items and submenus.
class MenuModel {
public:
    /// Items get ids from 1 to `maxId`, then again from 1, skipping the ids in use.
    explicit MenuModel(ItemId maxId = std::numeric_limits<ItemId>::max())
        : maxItemId(maxId), root(std::make_unique<Menu>(*this))
    {}
    MenuModel(const MenuModel&) = delete;
    MenuModel& operator=(const MenuModel&) = delete;

    Menu& statusMenu() { return *root; }
    const Menu& statusMenu() const { return *root; }
    /// Returns the item with the id, at any depth of the status menu; null if there is none.
    MenuItem* itemWithId(ItemId id) const;

    /// Returns the changes since the previous call.
    MenuChanges takeChanges();
    /// Returns whether so many changes are recorded that `takeChanges` should be called before more are made.
    bool hasManyChanges() const;

private:
    friend class Menu;
    friend class MenuItem;
    ItemId unusedId();
    /// Returns the position of the first item in the index whose id is not less than `id`.
    std::deque<MenuItem*>::const_iterator position(ItemId id) const;
    /// Returns the item with the id, templates included; null if there is none.
    MenuItem* indexed(ItemId id) const;
    void addToIndex(MenuItem& item) { index.insert(position(item.id()), &item); }
    void removeFromIndex(const MenuItem& item) { index.erase(position(item.id())); }

    const ItemId maxItemId;
    ItemId lastId = kStatusMenuId;
    bool reusesIds = false;
    MenuJournal journal;
    std::deque<MenuItem*> index; // sorted by id; a table needs three times the memory
    std::unique_ptr<Menu> root;
};

} // namespace Kest::App
