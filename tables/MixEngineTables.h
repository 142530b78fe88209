// The numeric parameters, text parameters and mix profiles of the mixing engine: their names, and the
// defaults of the parameters. The agent reads none of these tables; other programs of the mixing system share
// them.
#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>

namespace Kest::MixEngine {

// The names and the default values of the real-time input parameters. Both maps have the same keys. The unit
// of a parameter whose name ends with "_dB" is decibels.
extern const std::map<std::int32_t, std::string> cRTIn_ParameterNames;
extern const std::map<std::int32_t, float> cRTIn_ParameterDefaultValues;

// The default values of the offline rendering parameters, keys 0 to 75. All values are 0, because the
// engine's defaults are not known.
extern const std::map<std::int32_t, float> cOfflineParameterDefaultValues;

// The names and the defaults of the text parameters. Both maps have the same keys. If a text parameter has no
// default, its value in `cStringDefaults` is empty.
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

// The capabilities of a mix profile.
struct mixprofile {
    bool cinema; // for a cinema; false: for near-field monitoring
    std::set<eObjectExportFormats> objectExportFormats;
};

extern const std::map<eMixProfiles, std::string> sMixProfileNames;
extern const std::map<eMixProfiles, mixprofile> sMixProfileCapabilities;

} // namespace Kest::MixEngine
