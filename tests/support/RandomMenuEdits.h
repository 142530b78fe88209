#pragma once

#include "app/MenuModel.h"

#include <algorithm>
#include <random>

namespace Kest::Test {

/// Adds, removes, moves and changes items of a model, at any depth. The edits are the same in each run.
class RandomMenuEdits {
public:
    explicit RandomMenuEdits(App::MenuModel& ofModel) : model(ofModel) {}

    static constexpr int kMaxItems = 20; // in each menu; a full menu gets no more items

    int upTo(int maximum) { return std::uniform_int_distribution(0, maximum)(random); }
    void change() { changeIn(model.statusMenu()); }

private:
    std::unique_ptr<App::MenuItem> newItem()
    {
        const bool separator = upTo(9) == 0;
        const auto title = separator ? std::string() : "Item " + std::to_string(upTo(8));
        const auto action = separator || upTo(1) == 0 ? App::Action::none : App::Action::setFacility;
        return std::make_unique<App::MenuItem>(App::ItemProperties{
            .title = title, .action = action, .red = upTo(4) == 0, .separator = separator});
    }
    // Refills a menu with most of its items, as the application refills the bus menu, but in random order.
    void refill(App::Menu& menu)
    {
        std::vector<App::SharedProperties> kept;
        for (const auto& item : menu.itemArray())
            if (upTo(9) != 0)
                kept.push_back(item->sharedProperties());
        std::ranges::shuffle(kept, random);
        menu.removeAllItems();
        for (const auto& properties : kept)
            menu.addItem(std::make_unique<App::MenuItem>(properties));
    }
    void changeIn(App::Menu& menu)
    {
        const int count = menu.numberOfItems();
        if (count == 0 || (count < kMaxItems && upTo(3) == 0))
            return (void)menu.insertItem(newItem(), upTo(count));
        auto& item = *menu.itemArray()[static_cast<std::size_t>(upTo(count - 1))];
        const bool isLeaf = item.submenu() == nullptr;
        if (!isLeaf && upTo(3) > 0)
            return changeIn(*item.submenu());
        const int act = upTo(7);
        if (act == 0)
            menu.removeItem(item);
        else if (act == 1 && isLeaf) // the application moves no items with submenus
            menu.insertItem(menu.removeItem(item), upTo(count - 1));
        else if (act == 2 && item.properties().action == App::Action::none && !item.properties().separator)
            item.setSubmenu(std::make_unique<App::Menu>(model));
        else if (act == 3)
            item.setState(upTo(1) == 0);
        else if (act == 4)
            item.setEnabled(upTo(1) == 0);
        else if (act == 5)
            item.setHidden(upTo(1) == 0);
        else if (act == 6)
            item.setEncoding({"Film é", upTo(2)});
        else if (act == 7 && upTo(9) == 0) // seldom, because `refill` removes the submenus
            refill(menu);
    }

    App::MenuModel& model;
    std::mt19937 random{20260301};
};

} // namespace Kest::Test
