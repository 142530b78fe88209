// The table of settings, one row for each. The agent and the tools take keys, defaults, titles and names from
// this table.
#pragma once

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <span>
#include <string_view>

namespace Kest::Settings {

/// How the text of a setting in the settings file is read. The range of a number is not checked. If the
/// setting is a toggle in the menu, the toggle is on if the value is not 0; choosing it stores 1 minus the
/// value.
enum class SettingType : std::uint8_t {
    integer, // the stored number
    boolean, // 0 or 1; any other stored number is read as 1
    text,
};

struct Setting {
    const char* key;          // in the settings file
    int number;               // index in `strings` (a text) or `params` of the agent's `LIPC::ClientEntry`
    const char* defaultValue; // the default value, as the settings file would contain it
    SettingType type;
    const char* name;  // in the output of the tools
    const char* title; // in the menu and in the log
};

// When the agent starts, it saves the values of the toggles in the menu again, in the order of this table.
// The host simulator prints settings in this order. Rows of type `text` must be last.
inline constexpr Setting kSettings[] = {
    {"SoloMode", 4, "0", SettingType::integer, "SoloMode", "Solo Mode"},
    {"HdxAuxTrackDelaySetting", 32, "0", SettingType::integer, "HdxAuxTrackDelay", "HDX Aux Track Delay"},
    {"DAWLinkControlSetting", 33, "0", SettingType::integer, "DAWLinkControl", "DAW Link Control"},
    {"defaultPannerObjects", 37, "0", SettingType::boolean, "defaultPannerObjects", "Default Panner Objects"},
    {"LatencyCompensationControlSetting", 40, "1", SettingType::integer, "LatencyCompensationControl",
     "Latency Compensation"},
    {"PhysMonConfig", 41, "26", SettingType::integer, "PhysMonConfig",
     "Speaker Configuration"}, // an `LSS::eMixLayout` (MixLayouts.h)
    {"Facility", 0, "Standard-Surround", SettingType::text, "Facility", "Monitoring Facility"},
};

/// The menu "Default Bus" always contains the bus with this name.
inline constexpr char kMainBus[] = "Main Bus";

/// The path of the named pipe into which encoders write their reports.
inline constexpr char kEncodingProgressFifo[] = "/tmp/kest_settings_enc_progress_fifo";

/// The rows whose values are numbers. The agent's record contains these numbers as parameters.
inline constexpr std::span<const Setting> kParameterSettings(std::begin(kSettings),
                                                             std::ranges::find(kSettings, SettingType::text,
                                                                               &Setting::type));

/// Returns the row with this key. A key without a row is a compile error.
consteval const Setting& setting(std::string_view key)
{
    return *std::ranges::find(kSettings, key, &Setting::key);
}

} // namespace Kest::Settings
