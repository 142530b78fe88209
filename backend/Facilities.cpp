// The room: which facility it is, and which loudspeakers stand in it.
#include "backend/Backend.h"
#include "lipc/ClientEntry.h"
#include "lipc/SettingsRecord.h"
#include "tables/KestSettingsTables.h"

namespace Kest::Settings {
namespace {

constexpr char kFacilityKey[] = "Facility";
constexpr char kFacilityDefault[] = "Standard-Surround";
constexpr char kPhysMonConfigKey[] = "PhysMonConfig"; // a layout id, not a speaker-configuration id

} // namespace

juce::StringArray Backend::getFacilityList() const
{
    const juce::File folder(juce::String::fromUTF8(systemPaths.facilitiesFolder.c_str()));
    juce::StringArray names;
    for (const auto& facility : folder.findChildFiles(juce::File::findDirectories, false, "*"))
        names.add(facility.getFileName());
    return names;
}

juce::String Backend::getFacility() const { return userSettings().getValue(kFacilityKey, kFacilityDefault); }

void Backend::setFacility(const juce::String& name)
{
    applySetting(kFacilityKey, name, [&](LIPC::ClientEntry& own) {
        // The length in characters, not bytes: the host's other writers count the same way.
        own.strings[LIPC::kFacilityString].put(name.toRawUTF8(), name.length());
    });
}

int Backend::getPhysMonConfig() const
{
    const auto layout = userSettings().getIntValue(kPhysMonConfigKey, parameterDefault(LIPC::ePhysMonConfig));
    return speakerConfigurationOfLayout(layout);
}

void Backend::setPhysMonConfig(int speakerConfiguration)
{
    const auto row = sSpkrConf2Layout.find(speakerConfiguration);
    if (row == sSpkrConf2Layout.end())
        return;
    const auto layout = static_cast<int>(row->second);
    applyOption(kPhysMonConfigKey, layout, LIPC::ePhysMonConfig, static_cast<float>(layout));
}

} // namespace Kest::Settings
