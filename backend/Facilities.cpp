// The room: which facility it is, and which loudspeakers stand in it.
#include "backend/Backend.h"
#include "lipc/ClientEntry.h"
#include "tables/KestSettingsTables.h"

namespace Kest::Settings {

juce::StringArray Backend::getFacilityList() const
{
    const juce::File folder(juce::String::fromUTF8(systemPaths.facilitiesFolder.c_str()));
    juce::StringArray names;
    for (const auto& facility : folder.findChildFiles(juce::File::findDirectories, false, "*"))
        names.add(facility.getFileName());
    return names;
}

void Backend::setFacility(const juce::String& name)
{
    constexpr const auto& facility = setting("Facility");
    applySetting(facility, name, [&](LIPC::ClientEntry& own) {
        // The length in characters, not bytes: the host's other writers count the same way.
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

} // namespace Kest::Settings
