// Solo mode, HDX delay, speaker configuration and the toggles.
#pragma once

#include "app/InterfaceDescription.h"
#include "app/Sender.h"

namespace Kest::Settings {
class Backend;
}

namespace Kest::App {

/// Shows each choice with check marks and hands it to the Backend. Main thread only; both references outlive
/// it.
class SettingsMenus {
public:
    SettingsMenus(const Outlets& menuOutlets, Settings::Backend& settingsBackend)
        : outlets(menuOutlets), backend(settingsBackend)
    {}

    /// Shows everything that is stored. Some of it is written back on the way, as it is shown.
    void showStoredChoices();
    void showStoredSpeakerConfig();

    // Actions. Sent by the delegate they show what is stored; otherwise they apply the user's choice.
    void setSoloModeXOR(Sender sender) { setSoloMode(kExclusive, sender); }
    void setSoloModeLatch(Sender sender) { setSoloMode(kLatch, sender); }
    void setHdxAuxTrackDelay(Sender sender); // takes the sender's tag always
    void setSpeakerConfig(Sender sender);
    void toggleSetting(Sender sender);
    void setDAWType(Sender) {} // the menu is kept, and has no effect on purpose

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
