// The menus of solo mode, HDX delay and speaker configuration, and the toggles, which are items that
// switch a setting on or off.
#pragma once

#include "app/InterfaceDescription.h"
#include "app/Sender.h"

namespace Kest::Settings {
class Backend;
}

namespace Kest::App {

/// Marks the chosen items, and writes the user's choices to the Backend. Main thread only. Both references
/// must outlive this object.
class SettingsMenus {
public:
    SettingsMenus(const Outlets& menuOutlets, Settings::Backend& settingsBackend)
        : outlets(menuOutlets), backend(settingsBackend)
    {}

    /// Shows the stored solo mode, HDX delay and toggles. Writes the HDX delay and the toggles to the Backend
    /// again. If the menu has no item for the stored delay, shows and writes 0.
    void showStoredChoices();
    /// Fills the speaker menu, marks the stored configuration and writes it to the Backend again. An unknown
    /// configuration (-1) is neither marked nor written.
    void showStoredSpeakerConfig();

    // Actions. Each shows the user's choice and writes it to the Backend.
    // If the delegate is the sender, the next two functions show the mode but do not write it.
    void setSoloModeXOR(Sender sender) { setSoloMode(kExclusive, sender); }
    void setSoloModeLatch(Sender sender) { setSoloMode(kLatch, sender); }
    // The delay is the sender's tag, or 0 if the sender is not an item.
    void setHdxAuxTrackDelay(Sender sender);
    // The configuration is the sender's tag, or the stored one if the delegate is the sender.
    void setSpeakerConfig(Sender sender);
    // Inverts the setting of the sender's item; does nothing without an item.
    void toggleSetting(Sender sender);
    void setDAWType(Sender) {} // no effect, by design; the menu is hidden

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
