#include "tables/KestSettingsTables.h"

#include "tables/Settings.h"

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
// clang-format on

namespace {

static_assert(std::ranges::count(kSettings, SettingType::text, &Setting::type) ==
                  std::ssize(kSettings) - std::ssize(kParameterSettings),
              "the texts are the last rows");

// Solo mode, a parameter below it, has no row in this table.
constexpr int kFirstWithDefault = 32;

std::map<std::int32_t, float> parameterDefaults()
{
    std::map<std::int32_t, float> defaults{
        {34, 1.0F}, {35, 1.0F}, {36, 0.0F}, {38, 3.0F}, {39, 0.0F}}; // the host's
    for (const auto& setting : kParameterSettings)
        if (setting.number >= kFirstWithDefault)
            defaults.emplace(setting.number, std::stof(setting.defaultValue));
    return defaults;
}

} // namespace

const std::map<std::int32_t, float> cParameterDefaults = parameterDefaults();

std::int32_t speakerConfigurationOfLayout(std::int32_t layout)
{
    const auto found = std::ranges::find_if(sSpkrConf2Layout, [layout](const auto& row) {
        return static_cast<std::int32_t>(row.second) == layout;
    });
    return found == sSpkrConf2Layout.end() ? -1 : found->first;
}

} // namespace Kest::Settings
