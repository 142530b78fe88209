#include "app/FacilityMenus.h"

#include "backend/Backend.h"

#include <juce_core/juce_core.h>

namespace Kest::App {

void FacilityMenus::menuWillOpen(Menu& menu)
{
    if (&menu == outlets.mFacilityMenu || &menu == outlets.mFacilityMenu2)
        rebuildFacilityList(menu);
}

void FacilityMenus::rebuildFacilityList(Menu& menu)
{
    menu.removeAllItems();
    const auto current = backend.getFacility();
    auto names = backend.getFacilityList();
    names.sort(false); // file systems list in any order; a missing facility is inserted by name

    bool found = false;
    for (const auto& name : names) {
        if (!found && name != current && name.compare(current) >= 0) {
            addFacilityMenuItem(menu, current.toStdString(), true, true);
            found = true;
        }
        addFacilityMenuItem(menu, name.toStdString(), name == current, false);
        found = found || name == current;
    }
    if (!found)
        addFacilityMenuItem(menu, current.toStdString(), true, true);
}

void FacilityMenus::addFacilityMenuItem(Menu& menu, const std::string& title, bool isChecked, bool isRed)
{
    menu.addItem(std::make_unique<MenuItem>(ItemProperties{
        .title = title, .action = Action::setFacility, .mark = Mark::radio, .on = isChecked, .red = isRed}));
}

void FacilityMenus::setFacility(Sender sender)
{
    if (sender.menuItem() != nullptr)
        backend.setFacility(juce::String::fromUTF8(sender.menuItem()->title().c_str()));
}

} // namespace Kest::App
