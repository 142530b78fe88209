// The actions of menu items. Most have the name of their function, for example
// `SettingsMenus::setSoloModeXOR`.
#pragma once

#include <cstdint>

namespace Kest::App {

enum class Action : std::uint8_t {
    none,
    setSoloModeXOR,
    setSoloModeLatch,
    setHdxAuxTrackDelay,
    setSpeakerConfig,
    setFacility,
    toggleSetting, // the item's tag is the index of the setting in `Settings::kSettings`
    setDAWType,
    setDefaultKestBus,
    encShowInFinder,
    abortEncoding,
    clearEncodingHistory,
    restartService,
    switchTo32,
    switchTo64,
    showAboutDialog,
    openUninstaller,
    terminate,
};

} // namespace Kest::App
