// Mirrors the model's menu in AppKit's menus.
#pragma once

#include "app/MenuModel.h"

#import <AppKit/AppKit.h>
#include <set>
#include <string>
#include <unordered_map>

@class KestMenuBridge;

namespace Kest::AppKit {

/// Updates only what has changed. In an open menu items change in place, a removed item stays, greyed, and
/// new ones are appended, so that no item's index changes. The menu keeps this layout when it closes, because
/// AppKit sends the action of the chosen item later; `applyDeferredLayouts` and `menuNeedsUpdate` then apply
/// the model's layout. Main thread only.
class MenuMirror {
public:
    /// The bridge must outlive this object. Only `show`, `menuNeedsUpdate` and `applyDeferredLayouts` use the
    /// model.
    MenuMirror(const App::MenuModel& ofModel, const std::string& title, KestMenuBridge* target);
    ~MenuMirror();
    MenuMirror(const MenuMirror&) = delete;
    MenuMirror& operator=(const MenuMirror&) = delete;

    NSMenu* statusMenu() const { return root; }

    /// Shows the changes of the model; requires all of them, including the first ones.
    void show(const App::MenuChanges& changes);

    /// Applies the model's layout to a menu that has closed; an open menu keeps its layout.
    void menuNeedsUpdate(App::ItemId id);
    /// Only records the event, as does `menuClosed`: AppKit forbids changing items while it reports either.
    void menuOpened(App::ItemId id);
    void menuClosed(App::ItemId id);
    /// Applies the model's layout to all menus that have closed and have not opened again.
    void applyDeferredLayouts();
    /// Returns whether items are being added or removed, during which GNUstep sends `menuNeedsUpdate:`.
    bool isChanging() const { return changing; }

private:
    NSMenu* makeMenu(NSString* title) const;
    NSMenuItem* itemFor(const App::MenuItem& item);
    NSMenuItem* makeItem(const App::ItemProperties& props) const;
    void setTargetAndAction(NSMenuItem* item, const App::ItemProperties& props) const;
    void applyItem(NSMenuItem* item, const App::MenuItem& now);
    void applyLayout(App::ItemId owner);
    void removeMissing(NSMenu* menu, const App::Menu& wanted, bool isOpen);
    void unregister(NSMenuItem* item);
    void unregisterSubmenu(NSMenuItem* item);
    NSMenu* menuOf(App::ItemId id) const;

    const App::MenuModel& model;
    KestMenuBridge* const bridge;
    NSMenu* const root;
    std::unordered_map<App::ItemId, NSMenuItem*> items; // retained by their menus
    std::set<App::ItemId> openMenus;
    std::set<App::ItemId> closedMenus;  // those of openMenus whose layout is still to be applied
    std::set<App::ItemId> removedItems; // removed from the model, still in open menus
    bool changing = false;
};

} // namespace Kest::AppKit
