// The user's choices: kept in the settings file, and told to the host.
#include "backend/Backend.h"
#include "backend/SettingKeys.h"
#include "backend/SettingsFile.h"
#include "lipc/SessionBuffer.h"
#include "lipc/SettingsRecord.h"
#include "lipc/ShmManaged.h"
#include "tables/KestSettingsTables.h"

namespace Kest::Settings {

const juce::PropertySet& Backend::userSettings() const { return settingsFile->values(); }

// The file first, then the host, which gets no text that the file cannot contain; waiting for the disk comes
// last, as it takes longer than both.
void Backend::applySetting(const char* key, const juce::var& value,
                           const std::function<void(LIPC::ClientEntry&)>& tell)
{
    if (settingsFile->keep(key, value) == SaveResult::refused)
        return;
    withOwnRecord(tell);
    settingsFile->settle();
}

Backend::OneReport::OneReport(Backend& ofBackend) : backend(ofBackend)
{
    backend.settingsFile->holdReports();
}

Backend::OneReport::~OneReport() { backend.settingsFile->reportHeld(); }

void Backend::applyOption(const char* key, const juce::var& value, int parameter, float number)
{
    applySetting(key, value,
                 [=](LIPC::ClientEntry& own) { LIPC::storeShared(own.params[parameter], number); });
}

void Backend::withOwnRecord(const std::function<void(LIPC::ClientEntry&)>& write) const
{
    if (hostArchMismatch != 0)
        return;
    const LIPC::ShmManagedOpen<LIPC::SessionBuffer> session(systemPaths.sessionSegment.c_str());
    if (session.contents() == nullptr)
        return;
    if (auto* own = session.contents()->getClientEntry(LIPC::kSettingsClientName))
        write(*own);
}

int Backend::getSoloMode() const { return userSettings().getIntValue(kSoloMode.key, 0); }

void Backend::setSoloMode(int mode)
{
    applyOption(kSoloMode.key, mode, LIPC::eSoloMode, static_cast<float>(mode));
}

int Backend::getHdxAuxTrackDelay() const { return userSettings().getIntValue(kHdxAuxTrackDelay.key, 0); }

void Backend::setHdxAuxTrackDelay(int choice)
{
    applyOption(kHdxAuxTrackDelay.key, choice, LIPC::eHdxAuxTrackDelay, static_cast<float>(choice));
}

bool Backend::getDefaultPannerObjects() const
{
    return userSettings().getBoolValue(kDefaultPannerObjects.key, false);
}

void Backend::setDefaultPannerObjects(bool on)
{
    applyOption(kDefaultPannerObjects.key, on, LIPC::eDefaultPannerObjects, on ? 1.0F : 0.0F);
}

int Backend::getDAW_LinkControl() const
{
    return userSettings().getIntValue(kDAWLinkControl.key, parameterDefault(LIPC::eDAWLinkControl));
}

void Backend::setDAW_LinkControl(int value)
{
    applyOption(kDAWLinkControl.key, value, LIPC::eDAWLinkControl, static_cast<float>(value));
}

int Backend::getLatencyCompensationControl() const
{
    return userSettings().getIntValue(kLatencyCompensation.key,
                                      parameterDefault(LIPC::eLatencyCompensationControl));
}

void Backend::setLatencyCompensationControl(int value)
{
    applyOption(kLatencyCompensation.key, value, LIPC::eLatencyCompensationControl,
                static_cast<float>(value));
}

} // namespace Kest::Settings
