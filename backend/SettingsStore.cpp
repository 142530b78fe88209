// Saves settings in the settings file and writes them to the host.
#include "backend/Backend.h"
#include "backend/SettingsFile.h"
#include "lipc/ClientEntry.h"
#include "lipc/SharedNumber.h"
#include "tables/KestSettingsTables.h"
#include "text/Utf8.h"

#include <filesystem>

namespace Kest::Settings {

Backend::CombinedSaveLogScope::CombinedSaveLogScope(Backend& ofBackend) : file(*ofBackend.settingsFile)
{
    file.holdLogLine();
}
Backend::CombinedSaveLogScope::~CombinedSaveLogScope() { file.logHeldLine(); }

// Saves the file first, because the host must not get a text that the file cannot contain, then writes to the
// host, then waits for the disk, which takes longer than both.
void Backend::applySetting(const Setting& setting, const juce::var& value,
                           const std::function<void(LIPC::ClientEntry&)>& writeToHost)
{
    if (settingsFile->save(setting.key, value) == SaveResult::refused)
        return;
    monitor.withAgentRecord(writeToHost);
    settingsFile->commit();
}

juce::String Backend::text(const Setting& setting) const
{
    return settingsFile->values().getValue(setting.key, setting.defaultValue);
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

juce::StringArray Backend::getFacilityList() const
{
    namespace fs = std::filesystem;
    juce::StringArray names;
    std::error_code failure;
    std::error_code unknownKind;
    for (fs::directory_iterator entry(systemPaths.facilitiesFolder, failure), end; !failure && entry != end;
         entry.increment(failure))
        // JUCE writes beyond its memory for some names that are not UTF-8.
        if (entry->is_directory(unknownKind))
            names.add(juce::String::fromUTF8(Text::toUtf8(entry->path().filename().string()).c_str()));
    return names;
}

juce::String Backend::getFacility() const { return text(setting("Facility")); }

void Backend::setFacility(const juce::String& name)
{
    constexpr const auto& facility = setting("Facility");
    applySetting(facility, name, [&](LIPC::ClientEntry& own) {
        // The length is in characters, not bytes, as in the host's other writers.
        own.strings[facility.number].put(name.toRawUTF8(), name.length());
    });
}

int Backend::getPhysMonConfig() const
{
    return speakerConfigurationOfLayout(value(setting("PhysMonConfig")));
}

void Backend::setPhysMonConfig(int speakerConfiguration)
{
    const auto row = sSpkrConf2Layout.find(speakerConfiguration);
    if (row != sSpkrConf2Layout.end())
        setValue(setting("PhysMonConfig"), static_cast<int>(row->second));
}

void Backend::setDefaultKestBus(const char* name)
{
    if (name != nullptr)
        monitor.setDefaultBus(name);
}

} // namespace Kest::Settings
