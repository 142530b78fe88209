// Which items the menu has, with their titles and order, and the names by which the code knows some of them.
#pragma once

#include "app/MenuModel.h"
#include "tables/Settings.h"

#include <array>
#include <memory>

namespace Kest::App {

/// Items and menus of the loaded description. They live as long as the model, but for the items of menus that
/// are rebuilt, of which none is here.
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

    /// By index in `kSettings`; null for a setting that is not a toggle in the menu.
    std::array<MenuItem*, std::size(Settings::kSettings)> toggles{};

    Menu* mEncodingProgressMenu = nullptr;
    MenuItem* mClearEncodingHistory = nullptr;
    std::unique_ptr<Menu> mEncodingSubMenu; // the template of an encoding's actions, in no menu itself
};

/// The tag of the abort item in `mEncodingSubMenu`.
constexpr int kAbortTag = 2;

/// Fills the empty status menu. Without an about panel, the about item is a submenu of plain lines.
Outlets loadInterface(MenuModel& model, bool hasAboutPanel);

} // namespace Kest::App
