#include "app/MenuSnapshot.h"
#include "tests/support/RandomMenuEdits.h"

#include <gtest/gtest.h>

namespace {

using namespace Kest::App;

// An item's title and action never change.
using Identities = std::map<ItemId, std::pair<std::string, Action>>;

const ItemSnapshot* child(const ItemSnapshot& menu, ItemId id)
{
    const auto found = std::ranges::find(menu.items, id, &ItemSnapshot::id);
    return found == menu.items.end() ? nullptr : &*found;
}

// Compares two states of an item and of all below it with what is recorded of them, and removes that.
void takeOut(MenuChanges& changes, const ItemSnapshot& was, const ItemSnapshot& is)
{
    const auto item = changes.items.extract(is.id);
    const auto before = item ? item.mapped() : PreviousState{is.properties, is.hasSubmenu};
    EXPECT_TRUE(before.properties == was.properties && before.hadSubmenu == was.hasSubmenu) << is.id;
    EXPECT_FALSE(item && was.properties == is.properties && was.hasSubmenu == is.hasSubmenu) << "no change";

    const auto menu = changes.menus.extract(is.id);
    EXPECT_TRUE(menu || std::ranges::equal(was.items, is.items, {}, &ItemSnapshot::id, &ItemSnapshot::id));
    auto layout = menu ? menu.mapped() : LayoutChange();
    for (const auto& old : was.items)
        EXPECT_EQ(layout.removed.contains(old.id), child(is, old.id) == nullptr) << old.id;
    EXPECT_EQ(was.items.size() + layout.added.size(), is.items.size() + layout.removed.size());
    for (const auto& now : is.items)
        if (const auto* same = child(was, now.id))
            takeOut(changes, *same, now);
        else
            EXPECT_EQ(std::erase(layout.added, now.id), 1U) << now.id;
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
        auto changes = model.takeChanges();
        takeOut(changes, shown, now);
        EXPECT_TRUE(changes.isEmpty()) << "more than has changed, in round " << round;
        shown = now;

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

TEST(MenuModel, GivesARefilledItemNoIdThatIsInUse)
{
    MenuModel model(3);
    const auto add = [](Menu& menu, const char* title) -> MenuItem& {
        return menu.addItem(std::make_unique<MenuItem>(ItemProperties{.title = title}));
    };
    auto& owner = add(model.statusMenu(), "Owner");
    owner.setSubmenu(std::make_unique<Menu>(model));
    const auto id = add(*owner.submenu(), "Refilled").id();
    owner.submenu()->removeAllItems();
    model.statusMenu().removeItem(add(model.statusMenu(), "New"));
    EXPECT_EQ(add(model.statusMenu(), "New").id(), id) << "all were given, and the owner has the first";
    EXPECT_NE(add(*owner.submenu(), "Refilled").id(), id);
}

} // namespace
