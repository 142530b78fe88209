// Typing errors in the tables.
#include "tables/KestSettingsTables.h"
#include "tables/SpeakerLabels.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string_view>

namespace {

TEST(SpeakerLabels, MatchTheChannelCountsOfTheirLayoutAndUseEachLabelAndPositionOnce)
{
    auto layouts = LSS::cMixLayouts;
    layouts.insert(LSS::cKestMaxLayouts.begin(), LSS::cKestMaxLayouts.end());
    EXPECT_EQ(LSS::cSpeakerLabels.size(), layouts.size() + 1) << "one list has no layout";
    for (const auto& [id, list] : LSS::cSpeakerLabels) {
        SCOPED_TRACE(static_cast<int>(id));
        std::set<std::string_view> labels;
        std::set<LSS::ePosition> positions;
        std::set<std::int32_t> channels;
        for (const auto& speaker : list)
            EXPECT_TRUE(labels.insert(speaker.label).second && positions.insert(speaker.position).second &&
                        channels.insert(speaker.channelIndex).second);
        EXPECT_TRUE(*channels.begin() == 0 && *channels.rbegin() + 1 == std::ssize(list));
        if (const auto layout = layouts.find(id); layout != layouts.end()) {
            const auto lfes =
                std::ranges::count_if(labels, [](auto label) { return label.starts_with("LFE"); });
            EXPECT_EQ(lfes, layout->second.lfeChannels);
            EXPECT_EQ(std::ssize(list), layout->second.channels + lfes);
            layouts.erase(layout);
        }
    }
    EXPECT_TRUE(layouts.empty()) << "a layout has no list";
}

TEST(SpeakerConfigurations, AreFoundAgainByTheirLayout)
{
    using Kest::Settings::speakerConfigurationOfLayout;
    for (const auto& [id, layout] : Kest::Settings::sSpkrConf2Layout)
        EXPECT_EQ(speakerConfigurationOfLayout(static_cast<std::int32_t>(layout)), id);
    EXPECT_EQ(speakerConfigurationOfLayout(0), -1);
}

} // namespace
