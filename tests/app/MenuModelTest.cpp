// The way from one snapshot to the next.
#include "app/MenuDiff.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>

namespace {

using namespace Kest::App;

std::unique_ptr<MenuItem> newItem(const std::string& title, Action action = Action::none)
{
    return std::make_unique<MenuItem>(
        ItemProperties{.title = title, .action = action, .separator = title.empty(), .view = {}});
}

/// Does to a model what the application does to its own, at random.
struct RandomHand {
    int upTo(int most) { return std::uniform_int_distribution(0, most)(random); }

    std::unique_ptr<MenuItem> someItem()
    {
        constexpr const char* kTitles[] = {"", "A", "B", "C"};
        return newItem(kTitles[upTo(3)], upTo(1) == 0 ? Action::none : Action::terminate);
    }
    void refill(Menu& menu)
    {
        menu.removeAllItems();
        for (int i = upTo(4); i > 0; --i)
            menu.addItem(someItem());
    }
    void actOn(Menu& menu)
    {
        const int count = menu.numberOfItems();
        if (count == 0 || upTo(3) == 0)
            return (void)menu.insertItem(someItem(), upTo(count));
        auto& item = *menu.itemArray()[static_cast<std::size_t>(upTo(count - 1))];
        if (item.submenu() != nullptr && upTo(3) > 0)
            return actOn(*item.submenu());
        const std::function<void()> acts[] = {
            [&] { menu.removeItem(item); },
            [&] { menu.insertItem(menu.removeItem(item), upTo(count - 1)); },
            [&] { item.setSubmenu(std::make_unique<Menu>(model)); },
            [&] { item.setState(upTo(1) == 0); },
            [&] { item.setEnabled(upTo(1) == 0); },
            [&] { item.setHidden(upTo(1) == 0); },
            [&] {
                item.setView({"name", std::to_string(upTo(2)) + "%"});
            },
            [&] { refill(menu); },
        };
        acts[upTo(7)]();
    }

    MenuModel& model;
    std::mt19937 random{20260301};
};

const ItemSnapshot* child(const ItemSnapshot& menu, ItemId id)
{
    const auto found = std::ranges::find(menu.items, id, &ItemSnapshot::id);
    return found == menu.items.end() ? nullptr : &*found;
}

// What a front end does: redraws what it is told to, and leaves everything else as it is.
void apply(const MenuDifference& difference, const ItemSnapshot& now, ItemSnapshot& shown)
{
    if (std::ranges::count(difference.changedItems, now.id) > 0) {
        EXPECT_FALSE(shown.properties == now.properties && shown.hasSubmenu == now.hasSubmenu) << "no change";
        shown.properties = now.properties;
        shown.hasSubmenu = now.hasSubmenu;
    }
    if (std::ranges::count(difference.reshapedMenus, now.id) > 0) {
        std::vector<ItemSnapshot> items;
        for (const auto& item : now.items)
            items.push_back(child(shown, item.id) != nullptr ? *child(shown, item.id) : item);
        EXPECT_NE(std::exchange(shown.items, items), items) << "the same shape";
    }
    for (auto& item : shown.items)
        if (const auto* same = child(now, item.id))
            apply(difference, *same, item);
}

// What the model has noted is what two moments show; a menu that has the same items again may be named
// besides.
void expectSame(const MenuChanges& noted, const MenuDifference& difference, const ItemSnapshot& shown,
                const ItemSnapshot& now)
{
    std::map<ItemId, ItemBefore> befores(noted.items.begin(), noted.items.end());
    for (const auto id : difference.changedItems) {
        const auto found = befores.find(id);
        ASSERT_NE(found, befores.end()) << id;
        EXPECT_EQ(found->second.properties, findItem(shown, id)->properties);
        EXPECT_EQ(found->second.hadSubmenu, findItem(shown, id)->hasSubmenu);
        befores.erase(found);
    }
    EXPECT_TRUE(befores.empty());
    for (const auto id : difference.reshapedMenus)
        EXPECT_TRUE(noted.menus.contains(id)) << id;
    for (const auto& [owner, reshape] : noted.menus) {
        const auto& before = findItem(shown, owner)->items;
        const auto* after = findItem(now, owner);
        for (const auto& [id, properties] : reshape.went)
            EXPECT_TRUE(std::ranges::count(before, id, &ItemSnapshot::id) == 1 &&
                        std::ranges::count(after->items, id, &ItemSnapshot::id) == 0);
        for (const auto id : reshape.came)
            EXPECT_TRUE(std::ranges::count(before, id, &ItemSnapshot::id) == 0 &&
                        std::ranges::count(after->items, id, &ItemSnapshot::id) == 1);
        EXPECT_EQ(before.size() + reshape.came.size(), after->items.size() + reshape.went.size());
    }
}

// An item's title and action never change.
using Identities = std::map<ItemId, std::pair<std::string, Action>>;

// All items of a menu by their ids, none of which may be there twice.
void collect(const ItemSnapshot& menu, Identities& items)
{
    for (const auto& item : menu.items) {
        EXPECT_TRUE(items.try_emplace(item.id, item.properties->title, item.properties->action).second)
            << item.id;
        collect(item, items);
    }
}

TEST(MenuDiff, LeadsFromEachMomentToTheNextWhateverIsDone)
{
    MenuModel model;
    RandomHand hand{model};
    auto shown = takeSnapshot(model);
    Identities ever;
    for (int round = 0; round < 600 && !HasFailure(); ++round) {
        for (int acts = hand.upTo(3); acts >= 0; --acts)
            hand.actOn(model.statusMenu());
        const auto now = takeSnapshot(model);
        const auto difference = diff(shown, now);
        expectSame(model.takeChanges(), difference, shown, now);
        apply(difference, now, shown);
        EXPECT_EQ(shown, now) << round;

        Identities items;
        collect(now, items);
        for (const auto& [id, is] : items)
            EXPECT_EQ(ever.try_emplace(id, is).first->second, is) << "given to another item: " << id;
        for (const auto& [id, is] : ever)
            EXPECT_EQ(model.itemWithId(id) != nullptr, items.contains(id)) << round << " " << id;
    }
    EXPECT_GT(ever.size(), 500U) << "too little has happened to prove anything";
}

} // namespace
