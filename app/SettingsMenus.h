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

    // Actions. The sender is the user's item, or the application delegate at the start. Each shows the choice
    // and writes it to the Backend. Exceptions: the first two write nothing if the delegate is the sender;
    // `setDAWType` does nothing, by design, as its menu is hidden.
    void setSoloModeXOR(Sender sender) { setSoloMode(kExclusive, sender); }
    void setSoloModeLatch(Sender sender) { setSoloMode(kLatch, sender); }
    // The delay is the item's tag, or 0 for the delegate.
    void setHdxAuxTrackDelay(Sender sender);
    // The configuration is the item's tag, or the stored one for the delegate.
    void setSpeakerConfig(Sender sender);
    // Inverts the item's setting; does nothing for the delegate.
    void toggleSetting(Sender sender);
    void setDAWType(Sender) {}

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
