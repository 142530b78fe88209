// The menus of solo mode, HDX delay and speaker configuration, and the toggles.
#pragma once

#include "app/InterfaceDescription.h"
#include "app/Sender.h"

namespace Kest::Settings {
class Backend;
}

namespace Kest::App {

/// Shows each setting with check marks, and writes the user's choices to the Backend. Main thread only. Both
/// references must outlive this object.
class SettingsMenus {
public:
    SettingsMenus(const Outlets& menuOutlets, Settings::Backend& settingsBackend)
        : outlets(menuOutlets), backend(settingsBackend)
    {}

    /// Shows the stored solo mode, HDX delay and toggles. Writes the HDX delay and the toggles to the Backend
    /// again. If the menu has no item for the stored delay, shows and writes 0.
    void showStoredChoices();
    /// Fills the speaker menu, marks the stored configuration and writes it to the Backend again. A negative
    /// stored configuration is neither marked nor written.
    void showStoredSpeakerConfig();

    // Actions. Each shows the user's choice and writes it to the Backend.
    // Exception: if the delegate is the sender, the next two functions show the mode but do not write it.
    void setSoloModeXOR(Sender sender) { setSoloMode(kExclusive, sender); }
    void setSoloModeLatch(Sender sender) { setSoloMode(kLatch, sender); }
    // Shows and writes the sender's tag, which is 0 if the sender is not an item.
    void setHdxAuxTrackDelay(Sender sender);
    // If the delegate is the sender, uses the stored configuration instead of the sender's tag.
    void setSpeakerConfig(Sender sender);
    // Inverts the setting of the sender's item; does nothing without an item.
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
