// The way from one snapshot to the next.
#include "app/MenuDiff.h"
#include "tests/support/RandomHand.h"

#include <gtest/gtest.h>

#include <map>

namespace {

using namespace Kest::App;

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

// Few ids are used again and again; of many each is used once.
void playAtRandom(ItemId maxId)
{
    SCOPED_TRACE(maxId);
    MenuModel model(maxId);
    Kest::Test::RandomHand hand{model};
    auto shown = takeSnapshot(model);
    Identities ever;
    int reused = 0; // by an item that is not the same
    for (int round = 0; round < 1500 && !testing::Test::HasFailure(); ++round) {
        for (int acts = hand.upTo(3); acts >= 0; --acts)
            hand.change();
        const auto now = takeSnapshot(model);
        const auto difference = diff(shown, now);
        expectSame(model.takeChanges(), difference, shown, now);
        apply(difference, now, shown);
        EXPECT_EQ(shown, now) << round;

        Identities items;
        collect(now, items);
        for (const auto& [id, is] : items)
            reused += ever.try_emplace(id, is).first->second == is ? 0 : 1;
        for (const auto& [id, is] : ever)
            EXPECT_EQ(model.itemWithId(id) != nullptr, items.contains(id)) << round << " " << id;
    }
    const bool reuses = maxId < 1'000;
    EXPECT_GT(ever.size(), reuses ? 250U : 500U) << "too little has happened to prove anything";
    EXPECT_EQ(reused > 0, reuses) << ever.size();
}

TEST(MenuDiff, LeadsFromEachMomentToTheNextWhateverIsDone)
{
    playAtRandom(std::numeric_limits<ItemId>::max());
    playAtRandom(300);
}

TEST(MenuModel, GivesNoIdThatIsInUseWhenAllWereGiven)
{
    MenuModel model(5);
    const auto add = [](Menu& menu, const std::string& title) {
        return menu.addItem(std::make_unique<MenuItem>(ItemProperties{.title = title})).id();
    };
    auto& root = model.statusMenu();
    const auto kept = add(root, "Kept");
    model.itemWithId(kept)->setSubmenu(std::make_unique<Menu>(model));
    auto& refilled = *model.itemWithId(kept)->submenu();
    const auto taken = add(refilled, "Refilled");
    refilled.removeAllItems();
    for (auto id = add(root, "New"); id != taken; id = add(root, "New")) {
        ASSERT_NE(id, kept);
        root.removeItem(*model.itemWithId(id));
    }
    EXPECT_NE(add(refilled, "Refilled"), taken);
}

} // namespace
