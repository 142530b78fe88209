#import "platform/appkit/MenuMirror.h"

#import "platform/appkit/MenuBridge.h"
#import "platform/appkit/MenuItemProperties.h"
#import "platform/appkit/System.h"
#include "platform/appkit/Text.h"

namespace Kest::AppKit {
namespace {

bool isOmitted(const App::MenuItem& item) { return item.properties().hidden && !itemsCanHide(); }

// Returns null if no item with a submenu has the id.
const App::Menu* menuInModel(const App::MenuModel& model, App::ItemId owner)
{
    if (owner == App::kStatusMenuId)
        return &model.statusMenu();
    const auto* item = model.itemWithId(owner);
    return item == nullptr ? nullptr : item->submenu();
}

App::ItemId ownerOf(const App::MenuItem& item)
{
    return item.parentItem() == nullptr ? App::kStatusMenuId : item.parentItem()->id();
}

} // namespace

MenuMirror::MenuMirror(const App::MenuModel& ofModel, const std::string& title, KestMenuBridge* target)
    : model(ofModel), bridge(target), root(makeMenu(toNSString(title)))
{}

MenuMirror::~MenuMirror()
{
    [root setDelegate:nil];
    while ([root numberOfItems] > 0) { // the system may retain the menu, but must not retain its items
        unregister([root itemAtIndex:0]);
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

void MenuMirror::show(const App::MenuChanges& changes)
{
    changing = true;
    for (const auto& [id, before] : changes.items) {
        const auto& now = *model.itemWithId(id);
        if (before.properties->hidden != now.properties().hidden && !itemsCanHide())
            applyLayout(ownerOf(now));
        if (const auto shown = items.find(id); shown != items.end() && !isOmitted(now))
            applyItem(shown->second, now);
    }
    for (const auto& [owner, change] : changes.menus)
        applyLayout(owner);
    changing = false;
}

void MenuMirror::menuOpened(App::ItemId id)
{
    frozenMenus.insert(id);
    closedMenus.erase(id);
}

void MenuMirror::menuClosed(App::ItemId id)
{
    if (frozenMenus.contains(id))
        closedMenus.insert(id);
}

void MenuMirror::menuNeedsUpdate(App::ItemId id)
{
    if (closedMenus.erase(id) == 0)
        return;
    frozenMenus.erase(id);
    changing = true;
    applyLayout(id);
    changing = false;
}

void MenuMirror::applyDeferredLayouts()
{
    while (!closedMenus.empty()) // a menu that is removed with its item leaves the set
        menuNeedsUpdate(*closedMenus.begin());
}

NSMenu* MenuMirror::menuOf(App::ItemId id) const
{
    if (id == App::kStatusMenuId)
        return root;
    const auto found = items.find(id);
    return found == items.end() ? nullptr : [found->second submenu];
}

void MenuMirror::applyItem(NSMenuItem* item, const App::MenuItem& now)
{
    applyProperties(item, now.properties());
    if ((now.submenu() != nullptr) == static_cast<bool>([item hasSubmenu]))
        return;
    if (now.submenu() == nullptr) { // replaced by an equal item without a submenu
        unregisterSubmenu(item);
        [item setSubmenu:nil];
        setTargetAndAction(item, now.properties());
        return;
    }
    NSMenu* submenu = makeMenu([item title]);
    [item setSubmenu:submenu]; // also sets its target and action
    [submenu release];
    applyLayout(now.id());
}

void MenuMirror::setTargetAndAction(NSMenuItem* item, const App::ItemProperties& props) const
{
    [item setTarget:bridge];
    [item setAction:props.action == App::Action::none ? nullptr : @selector(chooseItem:)];
}

NSMenuItem* MenuMirror::makeItem(const App::ItemProperties& props) const
{
    if (props.separator)
        return (NSMenuItem*)[NSMenuItem separatorItem];
    NSMenuItem* made = [[[menuItemClass() alloc] initWithTitle:@"" action:nullptr
                                                 keyEquivalent:@""] autorelease];
    setTargetAndAction(made, props);
    return made;
}

NSMenuItem* MenuMirror::itemFor(const App::MenuItem& item)
{
    if (const auto known = items.find(item.id()); known != items.end()) {
        if (removedItems.erase(item.id()) != 0) { // added again
            applyItem(known->second, item);
            applyLayout(item.id());
        }
        return known->second;
    }
    NSMenuItem* made = makeItem(item.properties());
    setId(made, item.id());
    items[item.id()] = made;
    applyItem(made, item);
    return made;
}

void MenuMirror::applyLayout(App::ItemId owner)
{
    NSMenu* menu = menuOf(owner);
    const auto* wanted = menuInModel(model, owner);
    if (menu == nil || wanted == nullptr)
        return;
    const bool isFrozen = frozenMenus.contains(owner);
    removeMissing(menu, *wanted, isFrozen);
    NSInteger index = 0;
    for (const auto& entry : wanted->itemArray()) {
        if (isOmitted(*entry))
            continue;
        NSMenuItem* shown = itemFor(*entry);
        const bool isIn = [shown menu] == menu;
        if (!isIn && isFrozen)
            [menu addItem:shown];
        else if (!isFrozen && (!isIn || [menu itemAtIndex:index] != shown)) {
            [shown retain];
            if (isIn)
                [menu removeItem:shown];
            [menu insertItem:shown atIndex:index];
            [shown release];
        }
        ++index;
    }
}

void MenuMirror::removeMissing(NSMenu* menu, const App::Menu& wanted, bool isFrozen)
{
    for (NSInteger index = [menu numberOfItems] - 1; index >= 0; --index) {
        NSMenuItem* item = [menu itemAtIndex:index];
        const auto* current = model.itemWithId(idOf(item));
        if (current != nullptr && current->menu() == &wanted && !isOmitted(*current))
            continue;
        if (isFrozen) {
            [item setEnabled:NO];
            removedItems.insert(idOf(item));
        } else {
            unregister(item);
            [[item retain] autorelease]; // an item of its submenu may have caused the removal
            [menu removeItemAtIndex:index];
        }
    }
}

void MenuMirror::unregister(NSMenuItem* item)
{
    items.erase(idOf(item));
    frozenMenus.erase(idOf(item));
    closedMenus.erase(idOf(item));
    removedItems.erase(idOf(item));
    unregisterSubmenu(item);
}

void MenuMirror::unregisterSubmenu(NSMenuItem* item)
{
    NSMenu* submenu = [item submenu];
    [submenu setDelegate:nil];
    for (NSInteger index = 0; index < [submenu numberOfItems]; ++index)
        unregister([submenu itemAtIndex:index]);
}

} // namespace Kest::AppKit
