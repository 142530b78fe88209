// The items of the menu: titles, order, and pointers to the items and menus that change later.
#pragma once

#include "app/MenuModel.h"
#include "tables/Settings.h"

#include <array>
#include <memory>

namespace Kest::App {

/// Items and menus that `loadInterface` created. The pointers are valid as long as the model exists. If the
/// items of a menu are replaced later, only the menu is listed here, not its items.
struct Outlets {
    MenuItem* mSoloModeXORMenuItem = nullptr;
    MenuItem* mSoloModeLatchMenuItem = nullptr;
    Menu* mFacilityMenu = nullptr;
    Menu* mFacilityMenu2 = nullptr;
    MenuItem* mFacilityMenuItem = nullptr;
    MenuItem* mFacilityMenuItem2 = nullptr;
    Menu* mHdxAuxMenu = nullptr;
    Menu* mSpeakerConfMenu = nullptr;
    MenuItem* mDAWLinkControlMenu = nullptr;
    MenuItem* mLatencyCompensationControlMenu = nullptr;
    Menu* mDefaultBusMenu = nullptr;

    /// Has the same indices as `kSettings`. Null for a setting that is not a toggle in the menu.
    std::array<MenuItem*, std::size(Settings::kSettings)> toggles{};

    Menu* mEncodingProgressMenu = nullptr;
    MenuItem* mClearEncodingHistory = nullptr;
    std::unique_ptr<Menu> mEncodingSubMenu; // the template of an encoding's submenu; not attached to an item
};

/// The tag of the abort item in `mEncodingSubMenu` and its copies.
constexpr int kAbortTag = 2;

/// Fills the status menu of `model`, which must be empty, and returns the outlets. If `hasAboutPanel` is
/// false, the about item has a submenu of greyed items with the about text.
Outlets loadInterface(MenuModel& model, bool hasAboutPanel);

} // namespace Kest::App
