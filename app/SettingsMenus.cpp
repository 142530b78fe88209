#include "app/SettingsMenus.h"

#include "backend/Backend.h"
#include "tables/KestSettingsTables.h"

namespace Kest::App {
namespace {

const Settings::Setting& settingOf(const MenuItem& toggle) { return Settings::kSettings[toggle.tag()]; }

void checkOnly(const Menu& menu, int tag)
{
    const auto* chosen = menu.itemWithTag(tag);
    for (const auto& item : menu.itemArray())
        item->setState(item.get() == chosen);
}

} // namespace

void SettingsMenus::showStoredChoices()
{
    const auto soloMode = backend.getSoloMode();
    if (soloMode == kExclusive || soloMode == kLatch)
        setSoloMode(soloMode, Sender::delegate());
    setHdxAuxTrackDelay(outlets.mHdxAuxMenu->itemWithTag(backend.getHdxAuxTrackDelay()));
    for (auto* toggle : outlets.toggles)
        if (toggle != nullptr)
            apply(*toggle, backend.value(settingOf(*toggle)));
}

void SettingsMenus::showStoredSpeakerConfig()
{
    buildSpeakerConfigMenu(*outlets.mSpeakerConfMenu);
    setSpeakerConfig(Sender::delegate());
}

void SettingsMenus::setSoloMode(int mode, Sender sender)
{
    outlets.mSoloModeXORMenuItem->setState(mode == kExclusive);
    outlets.mSoloModeLatchMenuItem->setState(mode == kLatch);
    if (!sender.isDelegate())
        backend.setSoloMode(mode);
}

void SettingsMenus::setHdxAuxTrackDelay(Sender sender)
{
    checkOnly(*outlets.mHdxAuxMenu, sender.tag());
    backend.setHdxAuxTrackDelay(sender.tag());
}

void SettingsMenus::setSpeakerConfig(Sender sender)
{
    const int configuration = sender.isDelegate() ? backend.getPhysMonConfig() : sender.tag();
    if (configuration < 0)
        return;
    checkOnly(*outlets.mSpeakerConfMenu, configuration);
    backend.setPhysMonConfig(configuration);
}

void SettingsMenus::toggleSetting(Sender sender)
{
    if (auto* item = sender.menuItem())
        apply(*item, 1 - backend.value(settingOf(*item)));
}

void SettingsMenus::apply(MenuItem& toggle, int value)
{
    backend.setValue(settingOf(toggle), value);
    toggle.setState(value != 0);
    if (&toggle == outlets.mDAWLinkControlMenu)
        outlets.mLatencyCompensationControlMenu->setHidden(value == 0);
}

void SettingsMenus::buildSpeakerConfigMenu(Menu& menu)
{
    menu.removeAllItems();
    for (const auto& [configuration, title] : Settings::sSpkrConf2Name)
        menu.addItem(std::make_unique<MenuItem>(ItemProperties{
            .title = title, .action = Action::setSpeakerConfig, .mark = Mark::radio, .tag = configuration}));
}

} // namespace Kest::App
