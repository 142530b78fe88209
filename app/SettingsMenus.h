// The menus for solo mode, HDX delay and speaker configuration, and the toggles.
#pragma once

#include "app/InterfaceDescription.h"
#include "app/Sender.h"

namespace Kest::Settings {
class Backend;
}

namespace Kest::App {

/// Shows each setting with check marks and sets the user's choices in the Backend. Main thread only; both
/// references outlive it.
class SettingsMenus {
public:
    SettingsMenus(const Outlets& menuOutlets, Settings::Backend& settingsBackend)
        : outlets(menuOutlets), backend(settingsBackend)
    {}

    /// Shows the stored solo mode, HDX delay and toggles; writes the HDX delay and the toggles back.
    void showStoredChoices();
    void showStoredSpeakerConfig();

    // Actions. From the delegate they show the stored value, otherwise they apply the user's choice.
    void setSoloModeXOR(Sender sender) { setSoloMode(kExclusive, sender); }
    void setSoloModeLatch(Sender sender) { setSoloMode(kLatch, sender); }
    void setHdxAuxTrackDelay(Sender sender); // always applies the sender's tag
    void setSpeakerConfig(Sender sender);
    void toggleSetting(Sender sender);
    void setDAWType(Sender) {} // the menu is kept but has no effect, by design

    void buildSpeakerConfigMenu(Menu& menu);

private:
    static constexpr int kLatch = 0;
    static constexpr int kExclusive = 1;

    void setSoloMode(int mode, Sender sender);
    void apply(MenuItem& toggle, int value);

    const Outlets& outlets;
    Settings::Backend& backend;
};

} // namespace Kest::App
