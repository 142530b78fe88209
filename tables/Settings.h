// The table of settings: getters, setters, the write-back at the start, the titles in menu and log, and the
// names that the tools print use its rows.
#pragma once

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <span>
#include <string_view>

namespace Kest::Settings {

/// How a stored value is read; no range is checked. A toggle of either number type is on when its value is
/// not 0, and choosing it stores 1 - value.
enum class SettingType : std::uint8_t {
    integer, // as stored
    boolean, // 0 or 1; another number reads as 1
    text,
};

struct Setting {
    const char* key;       // in the settings file
    int number;            // of the parameter in the agent's record, or of the text
    const char* byDefault; // as the file would contain it
    SettingType type;
    const char* name;  // in the output of the tools
    const char* title; // in the menu and in the log
};

// In the order in which toggles are written back at the start and the simulator prints; texts are last.
// clang-format off
inline constexpr Setting kSettings[] = {
    {"SoloMode", 4, "0", SettingType::integer, "SoloMode", "Solo Mode"},
    {"HdxAuxTrackDelaySetting", 32, "0", SettingType::integer, "HdxAuxTrackDelay", "HDX Aux Track Delay"},
    {"DAWLinkControlSetting", 33, "0", SettingType::integer, "DAWLinkControl", "DAW Link Control"},
    {"defaultPannerObjects", 37, "0", SettingType::boolean, "defaultPannerObjects", "Default Panner Objects"},
    {"LatencyCompensationControlSetting", 40, "1", SettingType::integer, "LatencyCompensationControl", "Latency Compensation"},
    {"PhysMonConfig", 41, "26", SettingType::integer, "PhysMonConfig", "Speaker Configuration"}, // an `LSS::eMixLayout`
    {"Facility", 0, "Standard-Surround", SettingType::text, "Facility", "Monitoring Facility"},
};
// clang-format on

/// The bus that is always in the menu.
inline constexpr char kMainBus[] = "Main Bus";

/// The pipe that encoders report to.
inline constexpr char kEncodingProgressFifo[] = "/tmp/kest_settings_enc_progress_fifo";

/// The settings that are parameters of the agent's record.
inline constexpr std::span<const Setting> kParameterSettings(std::begin(kSettings),
                                                             std::ranges::find(kSettings, SettingType::text,
                                                                               &Setting::type));

/// Returns the row of a key. A key without a row does not compile.
consteval const Setting& setting(std::string_view key)
{
    return *std::ranges::find(kSettings, key, &Setting::key);
}

} // namespace Kest::Settings
