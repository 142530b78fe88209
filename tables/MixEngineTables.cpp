#include "tables/MixEngineTables.h"

namespace Kest::MixEngine {

namespace {

std::map<std::int32_t, float> zeroDefaults(std::int32_t rows)
{
    std::map<std::int32_t, float> defaults;
    for (std::int32_t key = 0; key < rows; ++key)
        defaults.emplace(key, 0.0f);
    return defaults;
}

} // namespace

// clang-format off
const std::map<std::int32_t, std::string> cRTIn_ParameterNames{
    { 0, "Level"},
    { 1, "Mute"},
    { 2, "Solo"},
    { 3, "Downmix Low level"},
    { 4, "Downmix Height level"},
    { 5, "Downmix Top level"},
    { 6, "Downmix Attenuation 0"},
    { 7, "Downmix Attenuation 1"},
    { 8, "Downmix Attenuation 2"},
    { 9, "Downmix Attenuation 3"},
    {10, "Downmix Attenuation 4"},
    {11, "Downmix Attenuation 5"},
    {12, "Downmix Attenuation 6"},
    {13, "Downmix Attenuation 7"},
    {14, "bus ID"},
    {15, "bus ID enabled"},
    {16, "interact_gain_dB"},
    {17, "overrule panner height"},
};

const std::map<std::int32_t, float> cRTIn_ParameterDefaultValues{
    { 0,  1.0f},
    { 1,  0.0f},
    { 2,  0.0f},
    { 3,  1.0f},
    { 4,  1.0f},
    { 5,  1.0f},
    { 6,  0.0f},
    { 7, -3.0f},
    { 8,  0.0f},
    { 9, -3.0f},
    {10, -3.0f},
    {11, -3.0f},
    {12, -3.0f},
    {13, -3.0f},
    {14,  0.0f},
    {15,  1.0f},
    {16,  0.0f},
    {17, -1.0f},
};
// clang-format on

// The keys are the engine's. The values are unknown and never read, so all are 0.
const std::map<std::int32_t, float> cOfflineParameterDefaultValues = zeroDefaults(76);

// clang-format off
const std::map<std::int32_t, std::string> cStringNames{
    {0, "Export_Path"},
    {1, "MDA_Renderer"},
    {2, "MDA_Renderer_Cfg"},
    {3, "SwGrp_ObjectName_2Play"},
    {4, "PrgName_for_loudness"},
};

const std::map<std::int32_t, std::string> cStringDefaults{
    {0, ""},
    {1, "vbap.bundle"},
    {2, "default-stereo.vbap.cfg"},
    {3, ""},
    {4, ""},
};

const std::map<eMixProfiles, std::string> sMixProfileNames{
    {eMixProfiles::CinemaKestMax,      "Cinema KestMax"},
    {eMixProfiles::CinemaKest3D,       "Cinema Kest 3D"},
    {eMixProfiles::NearFieldFull,      "NearField Full"},
    {eMixProfiles::NearFieldHome,      "NearField Home"},
    {eMixProfiles::NearFieldBroadcast, "NearField Broadcast"},
};

// The engine defines the export formats of a profile, and nothing here reads them: every profile has the one
// format known to this agent.
const std::map<eMixProfiles, mixprofile> sMixProfileCapabilities{
    {eMixProfiles::CinemaKestMax,      {true,  {eObjectExportFormats::MDA}}},
    {eMixProfiles::CinemaKest3D,       {true,  {eObjectExportFormats::MDA}}},
    {eMixProfiles::NearFieldFull,      {false, {eObjectExportFormats::MDA}}},
    {eMixProfiles::NearFieldHome,      {false, {eObjectExportFormats::MDA}}},
    {eMixProfiles::NearFieldBroadcast, {false, {eObjectExportFormats::MDA}}},
};
// clang-format on

} // namespace Kest::MixEngine
