// The room: which facility it is, and which loudspeakers stand in it.
#include "backend/Backend.h"
#include "backend/SettingKeys.h"
#include "lipc/ClientEntry.h"
#include "lipc/SettingsRecord.h"
#include "tables/KestSettingsTables.h"

namespace Kest::Settings {
namespace {

constexpr char kFacilityDefault[] = "Standard-Surround";

} // namespace

juce::StringArray Backend::getFacilityList() const
{
    const juce::File folder(juce::String::fromUTF8(systemPaths.facilitiesFolder.c_str()));
    juce::StringArray names;
    for (const auto& facility : folder.findChildFiles(juce::File::findDirectories, false, "*"))
        names.add(facility.getFileName());
    return names;
}

juce::String Backend::getFacility() const { return userSettings().getValue(kFacility.key, kFacilityDefault); }

void Backend::setFacility(const juce::String& name)
{
    applySetting(kFacility.key, name, [&](LIPC::ClientEntry& own) {
        // The length in characters, not bytes: the host's other writers count the same way.
        own.strings[LIPC::kFacilityString].put(name.toRawUTF8(), name.length());
    });
}

int Backend::getPhysMonConfig() const
{
    const auto layout =
        userSettings().getIntValue(kPhysMonConfig.key, parameterDefault(LIPC::ePhysMonConfig));
    return speakerConfigurationOfLayout(layout);
}

void Backend::setPhysMonConfig(int speakerConfiguration)
{
    const auto row = sSpkrConf2Layout.find(speakerConfiguration);
    if (row == sSpkrConf2Layout.end())
        return;
    const auto layout = static_cast<int>(row->second);
    applyOption(kPhysMonConfig.key, layout, LIPC::ePhysMonConfig, static_cast<float>(layout));
}

} // namespace Kest::Settings
