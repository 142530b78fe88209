// What the model notes of its changes, and its ids.
#include "app/MenuSnapshot.h"
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

// The items of a menu in their order now; those that stayed look as they did.
std::vector<ItemSnapshot> reshaped(const ItemSnapshot& shown, const ItemSnapshot& now,
                                   const MenuReshape& reshape)
{
    for (const auto& [id, properties] : reshape.went)
        EXPECT_TRUE(child(shown, id) != nullptr && child(now, id) == nullptr) << id;
    for (const auto id : reshape.came)
        EXPECT_TRUE(child(shown, id) == nullptr && child(now, id) != nullptr) << id;
    EXPECT_EQ(shown.items.size() + reshape.came.size(), now.items.size() + reshape.went.size());
    std::vector<ItemSnapshot> items;
    for (const auto& item : now.items)
        items.push_back(child(shown, item.id) != nullptr ? *child(shown, item.id) : item);
    return items;
}

// What a front end does: redraws what the model has noted, and leaves everything else as it is. Returns how
// many of the notes it has found.
std::size_t apply(const MenuChanges& changes, const ItemSnapshot& now, ItemSnapshot& shown)
{
    std::size_t found = 0;
    if (const auto item = changes.items.find(now.id); item != changes.items.end()) {
        ++found;
        EXPECT_TRUE(item->second.properties == shown.properties &&
                    item->second.hadSubmenu == shown.hasSubmenu);
        EXPECT_FALSE(shown.properties == now.properties && shown.hasSubmenu == now.hasSubmenu) << "no change";
        shown.properties = now.properties;
        shown.hasSubmenu = now.hasSubmenu;
    }
    if (const auto menu = changes.menus.find(now.id); menu != changes.menus.end()) {
        ++found;
        shown.items = reshaped(shown, now, menu->second);
    }
    for (auto& item : shown.items)
        if (const auto* same = child(now, item.id))
            found += apply(changes, *same, item);
    return found;
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
        const auto changes = model.takeChanges();
        EXPECT_EQ(apply(changes, now, shown), changes.items.size() + changes.menus.size());
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

TEST(MenuChanges, LeadFromEachStateOfTheMenuToTheNext)
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
