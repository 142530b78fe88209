// What the model records of its changes, and its ids.
#include "app/MenuSnapshot.h"
#include "tests/support/RandomMenuEdits.h"

#include <gtest/gtest.h>

#include <map>

namespace {

using namespace Kest::App;

// An item's title and action never change.
using Identities = std::map<ItemId, std::pair<std::string, Action>>;

const ItemSnapshot* child(const ItemSnapshot& menu, ItemId id)
{
    const auto found = std::ranges::find(menu.items, id, &ItemSnapshot::id);
    return found == menu.items.end() ? nullptr : &*found;
}

// The items of a menu in their order now; those that stayed as they were shown.
std::vector<ItemSnapshot> reshaped(const ItemSnapshot& shown, const ItemSnapshot& now,
                                   const LayoutChange& change)
{
    for (const auto& [id, properties] : change.removed)
        EXPECT_TRUE(child(shown, id) != nullptr && child(now, id) == nullptr) << id;
    for (const auto id : change.added)
        EXPECT_TRUE(child(shown, id) == nullptr && child(now, id) != nullptr) << id;
    EXPECT_EQ(shown.items.size() + change.added.size(), now.items.size() + change.removed.size());
    auto items = now.items;
    for (auto& item : items)
        if (const auto* before = child(shown, item.id))
            item = *before;
    return items;
}

// As a front end, redraws what the model has recorded and leaves everything else as it is. Returns how many
// of the records it has found.
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

void collect(const ItemSnapshot& menu, Identities& items)
{
    for (const auto& item : menu.items) {
        EXPECT_TRUE(items.try_emplace(item.id, item.properties->title, item.properties->action).second)
            << item.id << " is there twice";
        collect(item, items);
    }
}

class MenuChangesOf : public testing::TestWithParam<ItemId> {};

// Few ids are used again and again; of many each is used once.
TEST_P(MenuChangesOf, LeadFromEachStateOfTheMenuToTheNext)
{
    MenuModel model(GetParam());
    Kest::Test::RandomMenuEdits edits{model};
    auto shown = takeSnapshot(model);
    Identities ever;
    int reused = 0; // by an item that is not the same
    for (int round = 0; round < 1500 && !HasFailure(); ++round) {
        for (int count = edits.upTo(3); count >= 0; --count)
            edits.change();
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
    const bool reuses = GetParam() < 1'000;
    EXPECT_GT(ever.size(), reuses ? 250U : 500U) << "too few edits to prove anything";
    EXPECT_EQ(reused > 0, reuses) << ever.size();
}

INSTANTIATE_TEST_SUITE_P(Ids, MenuChangesOf, testing::Values(std::numeric_limits<ItemId>::max(), 300));

TEST(MenuModel, GivesNoIdThatIsInUseWhenAllWereGiven)
{
    MenuModel model(3);
    const auto add = [](Menu& menu, const char* title) -> MenuItem& {
        return menu.addItem(std::make_unique<MenuItem>(ItemProperties{.title = title}));
    };
    auto& kept = add(model.statusMenu(), "Kept");
    kept.setSubmenu(std::make_unique<Menu>(model));
    const auto taken = add(*kept.submenu(), "Refilled").id();
    kept.submenu()->removeAllItems();
    for (auto* other = &add(model.statusMenu(), "New"); other->id() != taken;) {
        ASSERT_NE(other->id(), kept.id());
        model.statusMenu().removeItem(*other);
        other = &add(model.statusMenu(), "New");
    }
    EXPECT_NE(add(*kept.submenu(), "Refilled").id(), taken);
}

} // namespace
