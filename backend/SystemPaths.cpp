#include "backend/SystemPaths.h"

#include <juce_core/juce_core.h>

namespace Kest::Settings {
namespace {

juce::File folder(const SystemPaths& paths) { return {juce::String::fromUTF8(paths.settingsFolder.c_str())}; }

} // namespace

std::string SystemPaths::absoluteSettingsFolder() const
{
    return folder(*this).getFullPathName().toStdString();
}

std::string SystemPaths::settingsFile() const
{
    return folder(*this).getChildFile(juce::String(kSettingsName) + ".xml").getFullPathName().toStdString();
}

} // namespace Kest::Settings
