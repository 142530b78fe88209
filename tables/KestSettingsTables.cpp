#include "tables/KestSettingsTables.h"

#include <algorithm>

namespace Kest::Settings {

using LSS::eMixLayout;

// clang-format off
const std::map<std::int32_t, std::string> sSpkrConf2Name{
    { 0, "Stereo"},
    { 1, "Surround 5.1"},
    { 2, "Surround 7.1"},
    { 3, "Kest 9.1"},
    { 4, "Kest 11.1"},
    { 5, "Kest 11.1 (7.1+4H)"},
    { 6, "Kest 13.1"},
    { 7, "Kest 11.1 - Cinema"},
    { 8, "Kest 13.1 - Cinema"},
    { 9, "KestMax 20.1"},
    {10, "KestMax 22.1"},
    {11, "KestMax 26.1"},
};

const std::map<std::int32_t, LSS::eMixLayout> sSpkrConf2Layout{
    { 0, eMixLayout::Stereo},
    { 1, eMixLayout::Surround_5_1},
    { 2, eMixLayout::Surround_7_1},
    { 3, eMixLayout::Kest_9_1},
    { 4, eMixLayout::Kest_11_1},
    { 5, eMixLayout::Kest_11_1_740},
    { 6, eMixLayout::Kest_13_1_751},
    { 7, eMixLayout::Kest_11_1_Cinema},
    { 8, eMixLayout::Kest_13_1_Cinema},
    { 9, eMixLayout::KestMax_20_1},
    {10, eMixLayout::KestMax_22_1},
    {11, eMixLayout::KestMax_26_1},
};

const std::map<std::int32_t, float> cParameterDefaults{
    {32,  0.0f},
    {33,  0.0f}, // DAW link control
    {34,  1.0f},
    {35,  1.0f},
    {36,  0.0f},
    {37,  0.0f},
    {38,  3.0f},
    {39,  0.0f},
    {40,  1.0f}, // latency compensation control
    {41, 26.0f}, // physical monitor configuration: a layout id, here KestMax 26.1
};
// clang-format on

std::int32_t speakerConfigurationOfLayout(std::int32_t layout)
{
    const auto found = std::ranges::find_if(sSpkrConf2Layout, [layout](const auto& row) {
        return static_cast<std::int32_t>(row.second) == layout;
    });
    return found == sSpkrConf2Layout.end() ? -1 : found->first;
}

std::int32_t parameterDefault(std::int32_t parameter)
{
    const auto found = cParameterDefaults.find(parameter);
    return found == cParameterDefaults.end() ? 0 : static_cast<std::int32_t>(found->second);
}

} // namespace Kest::Settings
