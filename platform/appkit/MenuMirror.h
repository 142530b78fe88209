// The model's menu as AppKit's menus.
#pragma once

#include "app/MenuModel.h"

#import <AppKit/AppKit.h>
#include <set>
#include <string>
#include <unordered_map>

@class KestMenuBridge;

namespace Kest::AppKit {

/// Changes only what has changed. In an open menu items change in place, a removed item stays greyed where it
/// is, and new ones are appended, so that an item's index does not change. The menu keeps that shape when it
/// closes, because the action of the item that was chosen is still to come: `applyDeferredShapes` and
/// `menuNeedsUpdate` give it the model's. Main thread only.
class MenuMirror {
public:
    /// The bridge outlives it; the model is used by `show`, `menuNeedsUpdate` and `applyDeferredShapes` only.
    MenuMirror(const App::MenuModel& ofModel, const std::string& title, KestMenuBridge* target);
    ~MenuMirror();
    MenuMirror(const MenuMirror&) = delete;
    MenuMirror& operator=(const MenuMirror&) = delete;

    NSMenu* statusMenu() const { return root; }

    /// Shows what has changed in the model; needs all changes, the first ones included.
    void show(const App::MenuChanges& changes);

    /// Gives a menu that has closed the model's shape now. An open menu keeps its shape.
    void menuNeedsUpdate(App::ItemId id);
    /// Only records it, as `menuClosed` does: AppKit forbids changing items while it reports either.
    void menuOpened(App::ItemId id);
    void menuClosed(App::ItemId id);
    /// Gives all menus that have closed, and have not opened again, the model's shape.
    void applyDeferredShapes();
    /// While items are added and removed GNUstep sends `menuNeedsUpdate:`.
    bool isChanging() const { return changing; }

private:
    NSMenu* makeMenu(NSString* title) const;
    NSMenuItem* itemFor(const App::MenuItem& item);
    NSMenuItem* makeItem(const App::ItemProperties& look) const;
    void aim(NSMenuItem* item, const App::ItemProperties& look) const;
    void applyItem(NSMenuItem* item, const App::MenuItem& now);
    void applyShape(App::ItemId owner);
    void removeGone(NSMenu* menu, const App::Menu& wanted, bool isOpen);
    void forget(NSMenuItem* item);
    void forgetBelow(NSMenuItem* item);
    NSMenu* menuOf(App::ItemId id) const;

    const App::MenuModel& model;
    KestMenuBridge* const bridge;
    NSMenu* const root;
    std::unordered_map<App::ItemId, NSMenuItem*> items; // retained by their menus
    std::set<App::ItemId> openMenus;
    std::set<App::ItemId> closedMenus; // of the open ones: their shape is still to be applied
    std::set<App::ItemId> gone;        // still there, in open menus
    bool changing = false;
};

} // namespace Kest::AppKit
