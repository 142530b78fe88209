#include "app/DefaultBusMenu.h"

#include "backend/Backend.h"
#include "log/Output.h"
#include "text/MacRoman.h"
#include "text/Printable.h"
#include "text/Utf8.h"

namespace Kest::App {
namespace {

constexpr std::size_t kMaxBusNameLength = 255; // bytes in Mac OS Roman

// Returns the host's bytes if they are UTF-8; otherwise converts them from Mac OS Roman, as for the menu.
std::string printableName(const std::string& name)
{
    return Text::printable(Text::isUtf8(name) ? name : Text::macRomanToUtf8(name));
}

} // namespace

void DefaultBusMenu::printAndRefreshBuses()
{
    const auto names = fetchBusList();
    for (std::size_t i = 0; i < names.size(); ++i)
        Lct::print("bus %d : %s\n", static_cast<int>(i), printableName(names[i]).c_str());
    Lct::print("\n");
    updateKestBusMenu();
}

void DefaultBusMenu::refreshQuietly()
{
    fetchBusList();
    updateKestBusMenu();
}

std::vector<std::string> DefaultBusMenu::fetchBusList()
{
    std::vector<std::string> names;
    backend.getKestBusNamesList(names);
    kestBusNamesList.clear();
    for (const auto& name : names)
        kestBusNamesList.push_back(Text::macRomanToUtf8(name));
    return names;
}

void DefaultBusMenu::updateKestBusMenu()
{
    auto& menu = *outlets.mDefaultBusMenu;
    menu.removeAllItems();
    bool found = false;
    for (std::size_t i = 0; i < kestBusNamesList.size(); ++i) {
        if (i == 1) // separates the main bus from the others
            menu.addItem(std::make_unique<MenuItem>(ItemProperties{.separator = true}));
        const auto& name = kestBusNamesList[i];
        const bool isCurrent = name == currentDefaultKestBus;
        menu.addItem(std::make_unique<MenuItem>(ItemProperties{.title = name,
                                                               .action = Action::setDefaultKestBus,
                                                               .mark = Mark::radio,
                                                               .tag = static_cast<int>(i),
                                                               .on = isCurrent}));
        found = found || isCurrent;
    }
    if (found)
        return;
    backend.setDefaultKestBus(Settings::kMainBus);
    currentDefaultKestBus = Settings::kMainBus;
    if (auto* mainBus = menu.itemWithTitle(Settings::kMainBus))
        mainBus->setState(true);
}

void DefaultBusMenu::setDefaultKestBus(Sender sender)
{
    if (sender.menuItem() != nullptr)
        sender.menuItem()->setState(true);
    const auto index = static_cast<std::size_t>(sender.tag());
    if (sender.tag() >= 0 && index < kestBusNamesList.size()) {
        currentDefaultKestBus = kestBusNamesList[index];
        setBackendBus(currentDefaultKestBus);
    }
    updateKestBusMenu();
}

void DefaultBusMenu::setBackendBus(const std::string& name)
{
    const auto bytes = Text::utf8ToMacRoman(name);
    if (bytes.size() >= 2) // one byte is one character in Mac OS Roman
        backend.setDefaultKestBus(bytes.substr(0, kMaxBusNameLength).c_str());
}

} // namespace Kest::App
