// Keys, clicks, typed and piped text, in a menu that changes meanwhile and holds any text: what is drawn fits
// the screen, and only what can be chosen is.
#include "fuzz/Input.h"
#include "platform/terminal/Screen.h"
#include "platform/terminal/TextMenu.h"
#include "tests/support/RandomMenuEdits.h"

#include <clocale>

namespace {

using namespace Kest;
using namespace Kest::Terminal;
using Fuzz::require;

void checkDrawable(const std::string& line)
{
    require(std::ranges::none_of(line, [](unsigned char c) { return c < 0x20 || c == 0x7F; }));
}

struct Session {
    Session()
    {
        for (int i = 0; i < 20; ++i)
            edits.change();
        show();
    }

    void show()
    {
        for (const auto& line : changeLines(model.takeChanges(), model))
            checkDrawable(line);
        menu = takeSnapshot(model);
        screen.show(menu, 1000);
    }

    void changeMenu(Fuzz::Input& input)
    {
        for (int changes = input.below(4); changes > 0; --changes)
            edits.change();
        auto& added = model.statusMenu().addItem(std::make_unique<App::MenuItem>(App::ItemProperties{
            .title = input.text(8), .action = App::Action::setDefaultKestBus, .mark = App::Mark::radio}));
        if (input.below(2) == 0)
            added.setEncoding({input.text(8), input.number(), input.below(2) == 0});
        show();
    }

    void press(const Input& pressed)
    {
        const auto request = screen.press(pressed);
        const auto* item = findItem(menu, request.chosen);
        require(item != nullptr && !item->properties->hidden);
        for (const auto id : request.opened)
            require(findItem(menu, id) != nullptr && findItem(menu, id)->hasSubmenu);
    }

    void draw(Size size)
    {
        const auto lines = screen.lines(size);
        require(lines.size() == static_cast<std::size_t>(size.lines));
        for (const auto& line : lines) {
            checkDrawable(line.text);
            require(cellWidth(line.text) == size.columns);
        }
    }

    App::MenuModel model;
    Test::RandomMenuEdits edits{model};
    App::ItemSnapshot menu;
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
    [[maybe_unused]] static const auto* locale = std::setlocale(LC_ALL, "C.UTF-8");
    Fuzz::Input input(data, size);
    Session session;
    while (!input.isEmpty())
        play(session, input);
    session.draw({24, 80});
    return 0;
}
