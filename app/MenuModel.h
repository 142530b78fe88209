// The menu as plain objects. Front ends show these objects and nothing else.
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

/// A menu item. The menu that contains the item owns it. Main thread only, like the whole model.
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
    void setEncoding(const EncodingState& state) { change(&ItemProperties::encoding, std::optional(state)); }
    /// Makes `menu` the submenu. It must belong to the same model and must not be null. Destroys the previous
    /// submenu.
    void setSubmenu(std::unique_ptr<Menu> menu);

    /// Returns null if the item has no submenu.
    Menu* submenu() const { return ownSubmenu.get(); }
    /// Returns the menu that contains the item; null if no menu does.
    Menu* menu() const { return parent; }
    /// Returns the item whose submenu contains this item; null if the item is in no menu, or in a menu that
    /// is not a submenu.
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

/// An ordered list of items. The menu owns the items.
class Menu {
public:
    /// `ofModel` must outlive the menu.
    explicit Menu(MenuModel& ofModel) : model(ofModel) {}
    ~Menu();
    Menu(const Menu&) = delete;
    Menu& operator=(const Menu&) = delete;

    int numberOfItems() const { return static_cast<int>(items.size()); }
    const std::vector<std::unique_ptr<MenuItem>>& itemArray() const { return items; }
    /// Returns the first item from the top with this tag; null if there is none.
    MenuItem* itemWithTag(int tag) const;
    /// Returns the first item from the top with this title; null if there is none.
    MenuItem* itemWithTitle(const std::string& title) const;
    /// Returns the index of `item`; -1 if this menu does not contain it.
    int indexOfItem(const MenuItem& item) const;

    /// Inserts an item at `index`, 0 to `numberOfItems()`, and gives it an id. If the last `removeAllItems`
    /// removed an item with the same title and action, the new item gets the id of that item and counts as
    /// the same item. Returns the inserted item.
    MenuItem& insertItem(std::unique_ptr<MenuItem> item, int index);
    MenuItem& addItem(std::unique_ptr<MenuItem> item) { return insertItem(std::move(item), numberOfItems()); }
    /// Removes an item, which must be in this menu, and returns it.
    std::unique_ptr<MenuItem> removeItem(const MenuItem& item);
    /// Removes all items, so that the menu can be refilled. Keeps the removed items until the next call of
    /// this function, so that `insertItem` can reuse their ids.
    void removeAllItems();

    /// Returns a menu with copies of all items and their submenus. The copies have new ids. The returned menu
    /// is not attached to an item.
    std::unique_ptr<Menu> copy() const;

    /// Returns the item that has this menu as its submenu; null for the status menu, and for a menu that is
    /// not attached.
    MenuItem* ownerItem() const { return owner; }

private:
    friend class MenuItem;
    ItemId idFor(const MenuItem& item);
    /// Returns whether the menu is the status menu or the submenu of an item. A menu that only serves to be
    /// copied is neither.
    bool isAttached() const;
    ItemId ownerId() const { return owner == nullptr ? kStatusMenuId : owner->itemId; }
    std::vector<ItemId> ids() const;

    MenuModel& model;
    MenuItem* owner = nullptr;
    std::vector<std::unique_ptr<MenuItem>> items;
    std::vector<std::unique_ptr<MenuItem>> removed; // by the last `removeAllItems`; `idFor` reuses their ids
};

/// Contains the status menu, which is the top-level menu, with all its items and submenus.
class MenuModel {
public:
    /// New items get the ids from 1 to `maxId` in ascending order, then from 1 again. Ids in use are skipped.
    /// There must always be an unused id.
    explicit MenuModel(ItemId maxId = std::numeric_limits<ItemId>::max())
        : maxItemId(maxId), root(std::make_unique<Menu>(*this))
    {}
    MenuModel(const MenuModel&) = delete;
    MenuModel& operator=(const MenuModel&) = delete;

    Menu& statusMenu() { return *root; }
    const Menu& statusMenu() const { return *root; }
    /// Returns the item with this id, at any depth of the status menu; null if there is none, or for
    /// `kStatusMenuId`.
    MenuItem* itemWithId(ItemId id) const;

    /// Returns the changes since the previous call, and forgets them.
    MenuChanges takeChanges();
    /// Returns whether more than 2000 changes are recorded. If so, call `takeChanges` before you make more
    /// changes.
    bool hasManyChanges() const;

private:
    friend class Menu;
    friend class MenuItem;
    ItemId unusedId();
    /// Returns the position in `index` of the first item whose id is not less than `id`.
    std::deque<MenuItem*>::const_iterator position(ItemId id) const;
    /// Returns the item with this id, even if it is not below the status menu; null if there is none.
    MenuItem* indexed(ItemId id) const;
    void addToIndex(MenuItem& item) { index.insert(position(item.id()), &item); }
    void removeFromIndex(const MenuItem& item) { index.erase(position(item.id())); }

    const ItemId maxItemId;
    ItemId lastId = kStatusMenuId;
    bool reusesIds = false;
    MenuJournal journal;
    std::deque<MenuItem*> index; // sorted by id; a map needs three times the memory
    std::unique_ptr<Menu> root;
};

} // namespace Kest::App
