// The tables are typed by hand: these tests look for what a slip of the hand would break.
#include "tables/KestSettingsTables.h"
#include "tables/MixEngineTables.h"
#include "tables/SpeakerLabels.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <set>
#include <string>
#include <string_view>
#include <tuple>

namespace {

using LSS::eMixLayout;
using LSS::ePosition;
using LSS::Speaker;

std::map<eMixLayout, LSS::MixLayout> allLayouts()
{
    auto layouts = LSS::cMixLayouts;
    layouts.insert(LSS::cKestMaxLayouts.begin(), LSS::cKestMaxLayouts.end());
    return layouts;
}

bool isLfe(const Speaker& speaker) { return std::string_view(speaker.label).starts_with("LFE"); }

bool isPermutationFromZero(std::span<const Speaker> list, std::int32_t Speaker::*index)
{
    std::vector<std::int32_t> wanted(list.size());
    std::iota(wanted.begin(), wanted.end(), 0);
    return std::ranges::is_permutation(list, wanted, {}, index);
}

const Speaker& speakerAt(eMixLayout layout, ePosition position)
{
    return *std::ranges::find(LSS::cSpeakerLabels.at(layout), position, &Speaker::position);
}

TEST(SpeakerLabels, MatchTheChannelCountsOfTheirLayout)
{
    for (const auto& [id, layout] : allLayouts()) {
        const auto list = LSS::cSpeakerLabels.at(id);
        EXPECT_EQ(std::ranges::count_if(list, isLfe), layout.lfeChannels) << layout.name;
        EXPECT_EQ(std::ssize(list), layout.channels + layout.lfeChannels) << layout.name;
    }
    EXPECT_EQ(LSS::cSpeakerLabels.size(), allLayouts().size() + 1) << "one list has no layout";
}

TEST(SpeakerLabels, UseEveryChannelLabelAndPositionOnce)
{
    for (const auto& [id, list] : LSS::cSpeakerLabels) {
        std::set<std::string> labels;
        std::set<ePosition> positions;
        for (const Speaker& speaker : list) {
            labels.insert(speaker.label);
            positions.insert(speaker.position);
        }
        EXPECT_TRUE(isPermutationFromZero(list, &Speaker::channelIndex)) << static_cast<int>(id);
        EXPECT_EQ(labels.size(), list.size()) << static_cast<int>(id);
        EXPECT_EQ(positions.size(), list.size()) << static_cast<int>(id);
    }
}

TEST(SpeakerLabels, StandSymmetrically)
{
    for (const auto& [id, list] : LSS::cSpeakerLabels) {
        for (const Speaker& speaker : list) {
            const bool central = std::fmod(speaker.azimuth, 180.0f) == 0.0f;
            const bool mirrored = std::ranges::any_of(list, [&speaker](const Speaker& other) {
                return other.azimuth == -speaker.azimuth && other.elevation == speaker.elevation;
            });
            EXPECT_TRUE(central || mirrored) << static_cast<int>(id) << ' ' << speaker.label;
        }
    }
}

TEST(SpeakerLabels, OfTheFixedArraysRunFromBackToFrontThenUpAndEndWithTheLfe)
{
    using enum ePosition;
    // clang-format off
    const std::vector order{
        RearLeft, RearRight, SideLeft, CentreSurround, SideRight, Left, Centre, Right,
        HeightSideLeft, HeightCentreSurround, HeightSideRight, HeightLeft, HeightCentre, HeightRight,
        TopLeft, TopRight, Top, LFE};
    // clang-format on
    const auto rank = [&order](const Speaker& speaker) {
        return std::ranges::find(order, speaker.position) - order.begin();
    };
    for (const auto& [id, list] : LSS::cSpeakerLabels) {
        if (LSS::cKestMaxLayouts.contains(id))
            continue;
        std::vector<Speaker> speakers(list.begin(), list.end());
        std::ranges::sort(speakers, {}, &Speaker::channelIndex);
        EXPECT_TRUE(std::ranges::is_sorted(speakers, {}, rank)) << static_cast<int>(id);
    }
}

TEST(SpeakerLabels, FillTheReferenceOrderCompletelyOrNotAtAll)
{
    using enum eMixLayout;
    const std::set filled{Surround_5_1, Kest_9_1, Kest_10_1, Kest_11_1, Kest_11_1_Cinema, Kest_13_1_661};
    for (const auto& [id, list] : LSS::cSpeakerLabels) {
        const auto none = std::ranges::count(list, -1, &Speaker::referenceIndex);
        if (filled.contains(id))
            EXPECT_TRUE(isPermutationFromZero(list, &Speaker::referenceIndex)) << static_cast<int>(id);
        else
            EXPECT_EQ(std::ssize(list) - none, id == Kest_11_1_740 ? 1 : 0) << static_cast<int>(id);
    }
    EXPECT_EQ(speakerAt(Kest_11_1_740, ePosition::LFE).referenceIndex, 5);
}

TEST(SpeakerLabels, KeepTheDeliberateExceptions)
{
    EXPECT_EQ(speakerAt(eMixLayout::Surround_7_0, ePosition::SideLeft).azimuth, 90.0f);
    EXPECT_EQ(speakerAt(eMixLayout::Surround_7_1, ePosition::SideLeft).azimuth, 110.0f);
    EXPECT_EQ(speakerAt(eMixLayout::Atmos_9_1, ePosition::RearLeft).azimuth, 0.0f);
    EXPECT_EQ(speakerAt(eMixLayout::Atmos_9_1, ePosition::RearRight).azimuth, 0.0f);
}

TEST(MixLayouts, LeaveIds20And23Out)
{
    EXPECT_EQ(LSS::cMixLayouts.size(), 22u);
    EXPECT_EQ(LSS::cKestMaxLayouts.size(), 4u);
    EXPECT_FALSE(allLayouts().contains(eMixLayout{20}));
    EXPECT_FALSE(allLayouts().contains(eMixLayout{23}));
}

TEST(MixLayouts, RepeatTheRecordsOf16And18ForTheCinema)
{
    const auto record = [](int id) {
        const LSS::MixLayout& layout = LSS::cMixLayouts.at(eMixLayout{id});
        return std::tuple(std::string(layout.name), layout.channels, layout.lfeChannels, layout.flag,
                          std::string(layout.presetName));
    };
    EXPECT_EQ(record(21), record(16));
    EXPECT_EQ(record(22), record(18));
}

TEST(SpeakerConfigurations, AreListedInMenuOrder)
{
    std::string titles;
    for (const auto& [id, title] : Kest::Settings::sSpkrConf2Name)
        titles += std::to_string(id) + ' ' + title + '\n';
    EXPECT_EQ(titles,
              "0 Stereo\n1 Surround 5.1\n2 Surround 7.1\n3 Kest 9.1\n4 Kest 11.1\n5 Kest 11.1 (7.1+4H)\n"
              "6 Kest 13.1\n7 Kest 11.1 - Cinema\n8 Kest 13.1 - Cinema\n9 KestMax 20.1\n"
              "10 KestMax 22.1\n11 KestMax 26.1\n");
}

TEST(SpeakerConfigurations, AreFoundAgainByTheirLayout)
{
    using Kest::Settings::speakerConfigurationOfLayout;
    EXPECT_EQ(Kest::Settings::sSpkrConf2Layout.size(), Kest::Settings::sSpkrConf2Name.size());
    for (const auto& [id, layout] : Kest::Settings::sSpkrConf2Layout)
        EXPECT_EQ(speakerConfigurationOfLayout(static_cast<std::int32_t>(layout)), id);
    EXPECT_EQ(speakerConfigurationOfLayout(16), 4);
    EXPECT_EQ(speakerConfigurationOfLayout(21), 7);
    EXPECT_EQ(speakerConfigurationOfLayout(0), -1);
}

TEST(ParameterDefaults, AreZeroForParametersWithoutARow)
{
    EXPECT_EQ(Kest::Settings::cParameterDefaults.size(), 10u);
    EXPECT_EQ(Kest::Settings::parameterDefault(41), 26);
    EXPECT_EQ(Kest::Settings::parameterDefault(42), 0);
}

TEST(MixEngineTables, HaveADefaultForEveryName)
{
    using namespace Kest::MixEngine;
    const auto sameKeys = [](const auto& row, const auto& other) { return row.first == other.first; };
    EXPECT_EQ(cRTIn_ParameterNames.size(), 18u);
    EXPECT_TRUE(std::ranges::equal(cRTIn_ParameterNames, cRTIn_ParameterDefaultValues, sameKeys));
    EXPECT_TRUE(std::ranges::equal(cStringNames, cStringDefaults, sameKeys));
    EXPECT_TRUE(std::ranges::equal(sMixProfileNames, sMixProfileCapabilities, sameKeys));
    EXPECT_EQ(cOfflineParameterDefaultValues.size(), 76u);
}

} // namespace
