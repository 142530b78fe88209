// The items of the menu: titles, order, and pointers to the items and menus that change later.
#pragma once

#include "app/MenuModel.h"
#include "tables/Settings.h"

#include <array>
#include <memory>

namespace Kest::App {

/// Items and menus that `loadInterface` created and that are used later. The plain pointers are valid as long
/// as the model that was passed to `loadInterface` exists. There are no pointers to the items of menus that
/// are refilled later.
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

    /// The toggle of each setting, with the same indices as `Settings::kSettings`. Null for a setting that is
    /// not a toggle.
    std::array<MenuItem*, std::size(Settings::kSettings)> toggles{};

    Menu* mEncodingProgressMenu = nullptr;
    MenuItem* mClearEncodingHistory = nullptr;
    std::unique_ptr<Menu> mEncodingSubMenu; // not attached; each encoding's item gets a copy as submenu
};

/// The tag of the abort item in `mEncodingSubMenu` and its copies.
constexpr int kAbortTag = 2;

/// Fills the status menu of `model` and returns the outlets. The menu must be empty. If `hasAboutPanel` is
/// false, the about item has a submenu of greyed items with the agent's name, version and licence.
Outlets loadInterface(MenuModel& model, bool hasAboutPanel);

} // namespace Kest::App
