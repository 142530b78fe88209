// The model's menu as AppKit's menus.
#pragma once

#include "app/MenuSnapshot.h"

#import <AppKit/AppKit.h>
#include <set>
#include <string>
#include <unordered_map>

@class KestMenuBridge;

namespace Kest::AppKit {

/// Changes only what has changed. In an open menu items change in place, an item that went stays greyed where
/// it is, and new ones come at the end; its true shape follows when it closes. Main thread only.
class MenuMirror {
public:
    /// The bridge outlives it.
    MenuMirror(const std::string& title, KestMenuBridge* target);
    ~MenuMirror();
    MenuMirror(const MenuMirror&) = delete;
    MenuMirror& operator=(const MenuMirror&) = delete;

    NSMenu* statusMenu() const { return root; }

    void show(App::ItemSnapshot now);

    void menuOpened(App::ItemId id) { openMenus.insert(id); }
    void menuClosed(App::ItemId id);
    /// While items come and go GNUstep says that menus open; they do not.
    bool isChanging() const { return changing; }

private:
    NSMenu* makeMenu(NSString* title) const;
    NSMenuItem* itemFor(const App::ItemSnapshot& item);
    NSMenuItem* makeItem(const App::ItemSnapshot& item) const;
    void aim(NSMenuItem* item, const App::ItemProperties& look) const;
    void applyItem(NSMenuItem* item, const App::ItemSnapshot& now);
    void applyShape(const App::ItemSnapshot& owner);
    void removeGone(NSMenu* menu, const App::ItemSnapshot& owner, bool isOpen);
    void forget(NSMenuItem* item);
    void forgetBelow(NSMenuItem* item);
    NSMenu* menuOf(App::ItemId id) const;

    KestMenuBridge* const bridge;
    NSMenu* const root;
    std::unordered_map<App::ItemId, NSMenuItem*> items; // retained by their menus
    std::set<App::ItemId> openMenus;
    std::set<App::ItemId> gone; // still there, in open menus
    App::ItemSnapshot shown;
    bool changing = false;
};

} // namespace Kest::AppKit
