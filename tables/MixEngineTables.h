// Parameters, strings and mix profiles of the mixing engine, with names and defaults. The agent reads none of
// them; they complete the tables that the system's programs share.
#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>

namespace Kest::MixEngine {

// Real-time input parameters: key to name, and under the same keys the defaults. "_dB" names are in decibels.
extern const std::map<std::int32_t, std::string> cRTIn_ParameterNames;
extern const std::map<std::int32_t, float> cRTIn_ParameterDefaultValues;

// Offline rendering parameters, keys 0 to 75.
extern const std::map<std::int32_t, float> cOfflineParameterDefaultValues;

// Text parameters: key to name, and under the same keys the defaults (empty where there is none).
extern const std::map<std::int32_t, std::string> cStringNames;
extern const std::map<std::int32_t, std::string> cStringDefaults;

enum class eMixProfiles : std::int32_t {
    CinemaKestMax,
    CinemaKest3D,
    NearFieldFull,
    NearFieldHome,
    NearFieldBroadcast,
};

enum class eObjectExportFormats : std::int32_t { MDA };

struct mixprofile {
    bool cinema; // mixed for a cinema rather than for the near field
    std::set<eObjectExportFormats> objectExportFormats;
};

extern const std::map<eMixProfiles, std::string> sMixProfileNames;
extern const std::map<eMixProfiles, mixprofile> sMixProfileCapabilities;

} // namespace Kest::MixEngine
