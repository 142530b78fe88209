// The user's choices: kept in the settings file, and told to the host.
#include "backend/Backend.h"
#include "backend/SettingsFile.h"
#include "lipc/SessionBuffer.h"
#include "lipc/SettingsRecord.h"
#include "lipc/ShmManaged.h"

namespace Kest::Settings {

// The file first, then the host, which gets no text that the file cannot contain; waiting for the disk comes
// last, as it takes longer than both.
void Backend::applySetting(const Setting& setting, const juce::var& value,
                           const std::function<void(LIPC::ClientEntry&)>& tell)
{
    if (settingsFile->keep(setting.key, value) == SaveResult::refused)
        return;
    withOwnRecord(tell);
    settingsFile->settle();
}

Backend::OneReport::OneReport(Backend& ofBackend) : backend(ofBackend)
{
    backend.settingsFile->holdReports();
}

Backend::OneReport::~OneReport() { backend.settingsFile->reportHeld(); }

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

juce::String Backend::text(const Setting& setting) const
{
    return settingsFile->values().getValue(setting.key, setting.byDefault);
}

int Backend::value(const Setting& setting) const
{
    const int stored = text(setting).getIntValue();
    return setting.type == SettingType::boolean ? static_cast<int>(stored != 0) : stored;
}

void Backend::setValue(const Setting& setting, int value)
{
    applySetting(setting, value, [&](LIPC::ClientEntry& own) {
        LIPC::storeShared(own.params[setting.number], static_cast<float>(value));
    });
}

} // namespace Kest::Settings
