// The items of the menu, their titles and order, and the members that refer to some of them.
#pragma once

#include "app/MenuModel.h"
#include "tables/Settings.h"

#include <array>
#include <memory>

namespace Kest::App {

/// Items and menus of the loaded description, valid for the life of the model. Items of menus that are
/// rebuilt are not included.
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

    /// Indexed like `kSettings`; null for a setting that is not a toggle in the menu.
    std::array<MenuItem*, std::size(Settings::kSettings)> toggles{};

    Menu* mEncodingProgressMenu = nullptr;
    MenuItem* mClearEncodingHistory = nullptr;
    std::unique_ptr<Menu> mEncodingSubMenu; // the template of an encoding's actions; not attached to a menu
};

/// The tag of the abort item in `mEncodingSubMenu`.
constexpr int kAbortTag = 2;

/// Fills the empty status menu. Without an about panel, the about item is a submenu of greyed lines.
Outlets loadInterface(MenuModel& model, bool hasAboutPanel);

} // namespace Kest::App
