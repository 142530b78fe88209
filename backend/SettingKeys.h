// The names of the settings: in the file, and for people.
#pragma once

namespace Kest::Settings {

struct SettingKey {
    const char* key;   // in the settings file
    const char* title; // as the menu has it
};

inline constexpr SettingKey kSoloMode{"SoloMode", "Solo Mode"};
inline constexpr SettingKey kHdxAuxTrackDelay{"HdxAuxTrackDelaySetting", "HDX Aux Track Delay"};
inline constexpr SettingKey kDefaultPannerObjects{"defaultPannerObjects", "Default Panner Objects"};
inline constexpr SettingKey kDAWLinkControl{"DAWLinkControlSetting", "DAW Link Control"};
inline constexpr SettingKey kLatencyCompensation{"LatencyCompensationControlSetting", "Latency Compensation"};
inline constexpr SettingKey kPhysMonConfig{"PhysMonConfig", "Speaker Configuration"}; // a layout's number
inline constexpr SettingKey kFacility{"Facility", "Monitoring Facility"};

inline constexpr const SettingKey* kSettingKeys[] = {
    &kSoloMode,      &kHdxAuxTrackDelay, &kDefaultPannerObjects, &kDAWLinkControl, &kLatencyCompensation,
    &kPhysMonConfig, &kFacility};

} // namespace Kest::Settings
