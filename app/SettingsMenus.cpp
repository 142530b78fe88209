#include "app/SettingsMenus.h"

#include "backend/Backend.h"
#include "tables/KestSettingsTables.h"

namespace Kest::App {
namespace {

constexpr int kLatch = 0;
constexpr int kExclusive = 1;

void checkOnly(const Menu& menu, int tag)
{
    const auto* chosen = menu.itemWithTag(tag);
    for (const auto& item : menu.itemArray())
        item->setState(item.get() == chosen);
}

} // namespace

void SettingsMenus::showStoredChoices()
{
    const auto self = Sender::delegate();
    const auto soloMode = backend.getSoloMode();
    if (soloMode == kExclusive)
        setSoloModeXOR(self);
    else if (soloMode == kLatch)
        setSoloModeLatch(self);
    setHdxAuxTrackDelay(outlets.mHdxAuxMenu->itemWithTag(backend.getHdxAuxTrackDelay()));
    setDAWLinkControl(self);
    setDefaultPannerObjects(self);
    setDAWType(self);
    setLatencyCompensationControl(self);
}

void SettingsMenus::showStoredSpeakerConfig()
{
    buildSpeakerConfigMenu(*outlets.mSpeakerConfMenu);
    setSpeakerConfig(Sender::delegate());
}

void SettingsMenus::setSoloModeXOR(Sender sender)
{
    outlets.mSoloModeXORMenuItem->setState(true);
    outlets.mSoloModeLatchMenuItem->setState(false);
    if (!sender.isDelegate())
        backend.setSoloMode(kExclusive);
}

void SettingsMenus::setSoloModeLatch(Sender sender)
{
    outlets.mSoloModeXORMenuItem->setState(false);
    outlets.mSoloModeLatchMenuItem->setState(true);
    if (!sender.isDelegate())
        backend.setSoloMode(kLatch);
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

void SettingsMenus::setDAWLinkControl(Sender sender)
{
    const int stored = backend.getDAW_LinkControl();
    const int value = sender.isDelegate() ? stored : 1 - stored;
    backend.setDAW_LinkControl(value);
    outlets.mDAWLinkControlMenu->setState(value != 0);
    outlets.mLatencyCompensationControlMenu->setHidden(value == 0);
}

void SettingsMenus::setLatencyCompensationControl(Sender sender)
{
    const int stored = backend.getLatencyCompensationControl();
    const int value = sender.isDelegate() ? stored : 1 - stored;
    backend.setLatencyCompensationControl(value);
    outlets.mLatencyCompensationControlMenu->setState(value != 0);
}

void SettingsMenus::setDefaultPannerObjects(Sender sender)
{
    const bool stored = backend.getDefaultPannerObjects();
    const bool value = sender.isDelegate() ? stored : !stored;
    backend.setDefaultPannerObjects(value);
    outlets.mDefaultPannerObjectsMenuItem->setState(value);
    outlets.mDefaultPannerObjectsMenuItem->setEnabled(false);
}

void SettingsMenus::buildSpeakerConfigMenu(Menu& menu)
{
    menu.removeAllItems();
    for (const auto& [configuration, title] : Settings::sSpkrConf2Name)
        addSpeakerConfigMenuItem(menu, title, configuration, false, false);
}

void SettingsMenus::addSpeakerConfigMenuItem(Menu& menu, const std::string& title, int tag, bool isChecked,
                                             bool isRed)
{
    menu.addItem(std::make_unique<MenuItem>(ItemProperties{.title = title,
                                                           .action = Action::setSpeakerConfig,
                                                           .mark = Mark::radio,
                                                           .tag = tag,
                                                           .on = isChecked,
                                                           .red = isRed,
                                                           .view = {}}));
}

} // namespace Kest::App
