#import "platform/appkit/MenuMirror.h"

#include "app/MenuDiff.h"
#import "platform/appkit/MenuBridge.h"
#import "platform/appkit/MenuItemClass.h"
#import "platform/appkit/MenuItemLook.h"
#include "platform/appkit/Text.h"

#include <algorithm>
#include <utility>

namespace Kest::AppKit {
namespace {

void leaveOutHidden(App::ItemSnapshot& menu)
{
    std::erase_if(menu.items, [](const auto& item) { return item.properties->hidden; });
    for (auto& item : menu.items)
        leaveOutHidden(item);
}

bool has(const App::ItemSnapshot& menu, App::ItemId id)
{
    return std::ranges::find(menu.items, id, &App::ItemSnapshot::id) != menu.items.end();
}

} // namespace

MenuMirror::MenuMirror(const std::string& title, KestMenuBridge* target)
    : bridge(target), root(makeMenu(toNSString(title)))
{
    shown.hasSubmenu = true;
}

MenuMirror::~MenuMirror()
{
    [root setDelegate:nil];
    while ([root numberOfItems] > 0) { // the system may hold on to the menu, but not to what is in it
        forget([root itemAtIndex:0]);
        [root removeItemAtIndex:0];
    }
    [root release];
}

NSMenu* MenuMirror::makeMenu(NSString* title) const
{
    NSMenu* menu = [[menuClass() alloc] initWithTitle:title];
    [menu setAutoenablesItems:NO];
    [menu setDelegate:(id)bridge];
    return menu;
}

void MenuMirror::show(App::ItemSnapshot now)
{
    if (!itemsCanHide())
        leaveOutHidden(now);
    const auto difference = diff(shown, now);
    shown = std::move(now);
    changing = true;
    for (const auto id : difference.changedItems)
        applyItem(items.at(id), *findItem(shown, id));
    for (const auto id : difference.reshapedMenus)
        if (const auto* owner = findItem(shown, id); menuOf(id) != nullptr)
            applyShape(*owner);
    changing = false;
}

void MenuMirror::menuOpened(App::ItemId id)
{
    openMenus.insert(id);
    closedMenus.erase(id);
}

void MenuMirror::menuClosed(App::ItemId id)
{
    if (openMenus.contains(id))
        closedMenus.insert(id);
}

void MenuMirror::menuNeedsUpdate(App::ItemId id)
{
    if (closedMenus.erase(id) == 0)
        return;
    openMenus.erase(id);
    const auto* owner = findItem(shown, id);
    if (owner == nullptr || menuOf(id) == nullptr)
        return;
    changing = true;
    applyShape(*owner);
    changing = false;
}

void MenuMirror::applyDeferredShapes()
{
    while (!closedMenus.empty()) // a menu that goes with its item leaves the set
        menuNeedsUpdate(*closedMenus.begin());
}

NSMenu* MenuMirror::menuOf(App::ItemId id) const
{
    if (id == App::kStatusMenuId)
        return root;
    const auto found = items.find(id);
    return found == items.end() ? nullptr : [found->second submenu];
}

void MenuMirror::applyItem(NSMenuItem* item, const App::ItemSnapshot& now)
{
    applyLook(item, *now.properties);
    if (now.hasSubmenu == static_cast<bool>([item hasSubmenu]))
        return;
    if (!now.hasSubmenu) { // one like it has taken its place
        forgetBelow(item);
        [item setSubmenu:nil];
        aim(item, *now.properties);
        return;
    }
    NSMenu* submenu = makeMenu([item title]);
    [item setSubmenu:submenu]; // which aims it at its submenu
    [submenu release];
    applyShape(now);
}

void MenuMirror::aim(NSMenuItem* item, const App::ItemProperties& look) const
{
    [item setTarget:bridge];
    [item setAction:look.action == App::Action::none ? nullptr : @selector(chooseItem:)];
}

NSMenuItem* MenuMirror::makeItem(const App::ItemSnapshot& item) const
{
    if (item.properties->separator)
        return (NSMenuItem*)[NSMenuItem separatorItem];
    NSMenuItem* made = [[[menuItemClass() alloc] initWithTitle:@"" action:nullptr
                                                 keyEquivalent:@""] autorelease];
    aim(made, *item.properties);
    return made;
}

NSMenuItem* MenuMirror::itemFor(const App::ItemSnapshot& item)
{
    if (const auto known = items.find(item.id); known != items.end()) {
        if (gone.erase(item.id) != 0) // and is back
            applyItem(known->second, item);
        return known->second;
    }
    NSMenuItem* made = makeItem(item);
    setId(made, item.id);
    items[item.id] = made;
    applyItem(made, item);
    return made;
}

void MenuMirror::applyShape(const App::ItemSnapshot& owner)
{
    NSMenu* menu = menuOf(owner.id);
    const bool isOpen = openMenus.contains(owner.id);
    removeGone(menu, owner, isOpen);
    NSInteger index = 0;
    for (const auto& wanted : owner.items) {
        NSMenuItem* item = itemFor(wanted);
        const bool isIn = [item menu] == menu;
        if (!isIn && isOpen)
            [menu addItem:item];
        else if (!isOpen && (!isIn || [menu indexOfItem:item] != index)) {
            [item retain];
            if (isIn)
                [menu removeItem:item];
            [menu insertItem:item atIndex:index];
            [item release];
        }
        ++index;
    }
}

void MenuMirror::removeGone(NSMenu* menu, const App::ItemSnapshot& owner, bool isOpen)
{
    for (NSInteger index = [menu numberOfItems] - 1; index >= 0; --index) {
        NSMenuItem* item = [menu itemAtIndex:index];
        if (has(owner, idOf(item)))
            continue;
        if (isOpen) {
            [item setEnabled:NO];
            gone.insert(idOf(item));
        } else {
            forget(item);
            [[item retain] autorelease]; // it may be one of its own items that has it removed
            [menu removeItemAtIndex:index];
        }
    }
}

void MenuMirror::forget(NSMenuItem* item)
{
    items.erase(idOf(item));
    openMenus.erase(idOf(item));
    closedMenus.erase(idOf(item));
    gone.erase(idOf(item));
    forgetBelow(item);
}

void MenuMirror::forgetBelow(NSMenuItem* item)
{
    NSMenu* submenu = [item submenu];
    [submenu setDelegate:nil];
    for (NSInteger index = 0; index < [submenu numberOfItems]; ++index)
        forget([submenu itemAtIndex:index]);
}

} // namespace Kest::AppKit
