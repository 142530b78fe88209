// Keys, clicks, typed and piped text, in a menu that changes meanwhile and holds any text: what is drawn fits
// the screen, and only what can be chosen is.
#include "fuzz/Input.h"
#include "platform/terminal/ItemSearch.h"
#include "platform/terminal/MenuScreen.h"
#include "platform/terminal/Screen.h"
#include "platform/terminal/TextMenu.h"
#include "tests/platform/terminal/SampleMenu.h"

#include <clocale>

namespace {

using namespace Kest;
using namespace Kest::Terminal;
using Fuzz::require;

struct Session {
    Session()
    {
        Test::fill(model.statusMenu(), model, Test::sampleMenu());
        model.takeChanges();
    }

    void changeMenu(Fuzz::Input& input)
    {
        auto& buses = *model.statusMenu().itemArray()[2]->submenu();
        auto& chosen = input.below(2) == 0 ? model.statusMenu() : buses;
        auto& item = *chosen.itemArray()[static_cast<std::size_t>(input.below(chosen.numberOfItems()))];
        const auto& is = item.properties();
        const int change = input.below(6);
        if (change == 0)
            item.setHidden(!is.hidden);
        else if (change == 1)
            item.setEnabled(!is.enabled);
        else if (change == 2)
            item.setState(!is.on);
        else if (change == 3)
            item.setView({input.text(8), input.number(), input.below(2) == 0});
        else if (change == 5)
            buses.addItem(std::make_unique<App::MenuItem>(Test::bus(0, input.text(8)).properties));
        else if (buses.numberOfItems() > 1)
            buses.removeItem(*buses.itemArray().back());
        for (const auto& line : changeLines(model.takeChanges(), model))
            checkDrawable(line);
        menu = takeSnapshot(model);
        screen.show(menu, 1000);
    }

    void press(const Input& pressed)
    {
        const auto request = screen.press(pressed);
        const auto* item = findItem(menu, request.chosen);
        require(item != nullptr && !item->properties->hidden, "what is chosen is seen");
        for (const auto id : request.opened)
            require(findItem(menu, id) != nullptr && findItem(menu, id)->hasSubmenu,
                    "what is opened is a submenu");
    }

    void draw(Size size)
    {
        const auto lines = screen.lines(size);
        require(lines.size() == static_cast<std::size_t>(size.lines), "as many lines as the screen has");
        for (const auto& line : lines) {
            checkDrawable(line.text);
            require(cellWidth(line.text) == size.columns, "as wide as the screen");
        }
    }

    static void checkDrawable(const std::string& line)
    {
        for (const char c : line)
            require(static_cast<unsigned char>(c) >= 0x20 && c != 0x7F, "no control character is drawn");
    }

    App::MenuModel model;
    App::ItemSnapshot menu = Test::sampleMenu();
    MenuScreen screen{Glyphs{}};
};

void play(Session& session, Fuzz::Input& input)
{
    const int keys[] = {0402, 0403, 0404, 0405, 0406, 0407, 0422, 0423, 0512, 0522, 0550, 0527, 0};
    switch (input.below(8)) {
    case 0:
        return session.press(inputOfCharacter(static_cast<std::wint_t>(input.number())));
    case 1:
        return session.press(inputOfKey(keys[input.below(13)]));
    case 2:
        return session.press(inputOfMouse(static_cast<unsigned long>(input.number()), input.byte() - 100));
    case 3:
        return session.changeMenu(input);
    case 4:
        return session.screen.addPrintedText(input.text(input.byte() % 64U));
    case 5: {
        const auto found = findByPath(session.menu, input.text(input.byte() % 32U));
        return require((found.item == nullptr) != found.error.empty(), "an item or an error");
    }
    case 6:
        return session.draw(
            {1 + (7 + input.below(47)) % 47, 1 + (39 + input.below(119)) % 119}); // rarely too small
    default:
        return session.press(inputOfCharacter(input.byte()));
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const auto* locale = std::setlocale(LC_ALL, "C.UTF-8");
    (void)locale;
    Fuzz::Input input(data, size);
    Session session;
    session.screen.show(session.menu, 0);
    while (!input.isEmpty())
        play(session, input);
    session.draw({24, 80});
    return 0;
}
