// The tables are typed by hand: these tests look for what a slip of the hand would break.
#include "tables/KestSettingsTables.h"
#include "tables/SpeakerLabels.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string_view>

namespace {

using LSS::Speaker;

std::map<LSS::eMixLayout, LSS::MixLayout> allLayouts()
{
    auto layouts = LSS::cMixLayouts;
    layouts.insert(LSS::cKestMaxLayouts.begin(), LSS::cKestMaxLayouts.end());
    return layouts;
}

bool isLfe(const Speaker& speaker) { return std::string_view(speaker.label).starts_with("LFE"); }

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
        std::set<LSS::ePosition> positions;
        std::set<std::int32_t> channels;
        for (const Speaker& speaker : list) {
            labels.insert(speaker.label);
            positions.insert(speaker.position);
            channels.insert(speaker.channelIndex);
        }
        EXPECT_EQ(channels.size(), list.size()) << static_cast<int>(id);
        EXPECT_TRUE(*channels.begin() == 0 && *channels.rbegin() + 1 == std::ssize(list))
            << static_cast<int>(id);
        EXPECT_EQ(labels.size(), list.size()) << static_cast<int>(id);
        EXPECT_EQ(positions.size(), list.size()) << static_cast<int>(id);
    }
}

TEST(SpeakerConfigurations, AreFoundAgainByTheirLayout)
{
    using Kest::Settings::speakerConfigurationOfLayout;
    for (const auto& [id, layout] : Kest::Settings::sSpkrConf2Layout)
        EXPECT_EQ(speakerConfigurationOfLayout(static_cast<std::int32_t>(layout)), id);
    EXPECT_EQ(speakerConfigurationOfLayout(0), -1);
}

} // namespace
