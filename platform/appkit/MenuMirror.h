// Keeps AppKit's menus equal to the menus of the model.
#pragma once

#include "app/MenuModel.h"

#import <AppKit/AppKit.h>
#include <set>
#include <string>
#include <unordered_map>

@class KestMenuBridge;

namespace Kest::AppKit {

/// Updates only what has changed. In an open menu, existing items are updated, a removed item remains but is
/// greyed, and a new item is appended, so that no index changes. The menu keeps these items when it closes,
/// because AppKit sends the action of the chosen item after that. The next call of `applyDeferredLayouts`, or
/// of `menuNeedsUpdate` for this menu, applies the model's layout: the model's items in the model's order.
/// Each parameter `id` identifies a menu by the item that has it as its submenu; `kStatusMenuId` for the
/// status menu. Main thread only.
class MenuMirror {
public:
    /// `title` is the title of the status menu. The menu is empty at first. `target` must outlive this
    /// object. Only `show`, `menuNeedsUpdate` and `applyDeferredLayouts` use `ofModel`, so the model may be
    /// destroyed before this object.
    MenuMirror(const App::MenuModel& ofModel, const std::string& title, KestMenuBridge* target);
    ~MenuMirror();
    MenuMirror(const MenuMirror&) = delete;
    MenuMirror& operator=(const MenuMirror&) = delete;

    NSMenu* statusMenu() const { return root; }

    /// Applies changes that the model has already made. Pass every change: the constructor copies no items.
    void show(const App::MenuChanges& changes);

    /// Applies the model's layout to the menu if `menuClosed` has deferred it and the menu has not opened
    /// again. Otherwise does nothing.
    void menuNeedsUpdate(App::ItemId id);
    /// Records that the menu has opened. Changes no items: AppKit forbids changes during this event.
    void menuOpened(App::ItemId id);
    /// Records that the menu has closed, and defers the model's layout. Changes no items: AppKit forbids
    /// changes during this event.
    void menuClosed(App::ItemId id);
    /// Applies the model's layout to all menus that have closed and have not opened again.
    void applyDeferredLayouts();
    /// Returns whether this object is changing menus. GNUstep sends `menuNeedsUpdate:` during such a change;
    /// ignore that message.
    bool isChanging() const { return changing; }

private:
    NSMenu* makeMenu(NSString* title) const;
    NSMenuItem* itemFor(const App::MenuItem& item);
    NSMenuItem* makeItem(const App::ItemProperties& props) const;
    void setTargetAndAction(NSMenuItem* item, const App::ItemProperties& props) const;
    void applyItem(NSMenuItem* item, const App::MenuItem& now);
    void applyLayout(App::ItemId owner);
    void removeMissing(NSMenu* menu, const App::Menu& wanted, bool isFrozen);
    void unregister(NSMenuItem* item);
    void unregisterSubmenu(NSMenuItem* item);
    NSMenu* menuOf(App::ItemId id) const;

    const App::MenuModel& model;
    KestMenuBridge* const bridge;
    NSMenu* const root;
    std::unordered_map<App::ItemId, NSMenuItem*> items; // retained by their menus
    std::set<App::ItemId> frozenMenus;                  // open menus, and closed menus with a deferred layout
    std::set<App::ItemId> closedMenus;                  // closed menus with a deferred layout
    std::set<App::ItemId> removedItems;                 // removed from the model, but still in `frozenMenus`
    bool changing = false;
};

} // namespace Kest::AppKit
