// The loudspeakers of every layout: label, channel, position and direction, one list per layout.
#pragma once

#include "tables/MixLayouts.h"

#include <array>
#include <cstdint>
#include <map>
#include <span>
#include <vector>

namespace LSS {

// The nominal position of a loudspeaker. The exact direction varies between layouts and is in Speaker.
enum class ePosition : std::int32_t {
    Left = 0,
    Centre = 1,
    Right = 2,
    SideLeft = 3,
    SideRight = 4,
    RearLeft = 5,
    CentreSurround = 6,
    RearRight = 7,
    LFE = 8,
    HeightLeft = 9,
    HeightCentre = 10,
    HeightRight = 11,
    HeightSideLeft = 12,
    HeightSideRight = 13,
    HeightRearLeft = 14,
    HeightCentreSurround = 15,
    HeightRearRight = 16,
    Top = 17,
    BottomFrontLeft = 18,
    BottomFrontCentre = 19,
    BottomFrontRight = 20,
    FrontLeftCentre = 21,
    FrontRightCentre = 22,
    WideLeft = 23,
    WideRight = 24,
    HeightWideLeft = 25,
    HeightWideRight = 26,
    TopLeft = 27,
    TopRight = 28,
    LFE1 = 31,
    LFE2 = 32,
    SideFrontLeft = 33,
    SideFrontRight = 34,
    SideBackLeft = 35,
    SideBackRight = 36,
    HeightSideFrontLeft = 37,
    HeightSideFrontRight = 38,
    HeightSideBackLeft = 39,
    HeightSideBackRight = 40,
    TopFrontLeft = 41,
    TopFrontRight = 42,
    TopBackLeft = 43,
    TopBackRight = 44,
};

struct Speaker {
    char label[8];             // NUL-terminated, at most 7 characters
    std::int32_t channelIndex; // index in the layout's channel order, from 0
    ePosition position;
    float azimuth;               // degrees, positive to the left
    float elevation;             // degrees, positive upwards
    std::int32_t referenceIndex; // index in the reference order of the 5.1-based layouts, -1 for none
};

// Array order is not channel order: sort by channelIndex if the order matters.
extern const std::array<Speaker, 1> cSpeakerLabels_Mono_1_0;
extern const std::array<Speaker, 2> cSpeakerLabels_Stereo_2_0;
extern const std::array<Speaker, 3> cSpeakerLabels_LCR_3_0;
extern const std::array<Speaker, 4> cSpeakerLabels_LCRS_4_0;
extern const std::array<Speaker, 4> cSpeakerLabels_Quad_4_0;
extern const std::array<Speaker, 4> cSpeakerLabels_2_2H;
extern const std::array<Speaker, 5> cSpeakerLabels_Planar_5_0;
extern const std::array<Speaker, 6> cSpeakerLabels_Planar_5_1;
extern const std::array<Speaker, 6> cSpeakerLabels_Planar_6_0;
extern const std::array<Speaker, 7> cSpeakerLabels_Planar_6_1;
extern const std::array<Speaker, 7> cSpeakerLabels_Planar_7_0;
extern const std::array<Speaker, 8> cSpeakerLabels_Planar_7_1;
extern const std::array<Speaker, 6> cSpeakerLabels_Kest_222;
extern const std::array<Speaker, 8> cSpeakerLabels_Kest_8_0;
extern const std::array<Speaker, 10> cSpeakerLabels_Kest_9_1;
extern const std::array<Speaker, 11> cSpeakerLabels_Kest_10_1;
extern const std::array<Speaker, 12> cSpeakerLabels_Kest_11_1;
extern const std::array<Speaker, 12> cSpeakerLabels_Kest_11_1_740;
extern const std::array<Speaker, 14> cSpeakerLabels_Kest_13_1_751;
extern const std::array<Speaker, 10> cSpeakerLabels_DolbyAtmos_9_1;
extern const std::array<Speaker, 14> cSpeakerLabels_Kest_13_1_661;
extern const std::vector<Speaker> cSpeakerLabels_KestMax_20_1;
extern const std::vector<Speaker> cSpeakerLabels_KestMax_22_1;
extern const std::vector<Speaker> cSpeakerLabels_KestMax_26_1;
extern const std::vector<Speaker> cSpeakerLabels_NHK_22_2;

// All lists. The two cinema layouts share the lists of the layouts that they derive from. The views are valid
// until the process exits. Look up with find.
extern const std::map<eMixLayout, std::span<const Speaker>> cSpeakerLabels;

// The lists of the layouts in cKestMaxLayouts, again.
extern const std::map<eMixLayout, std::span<const Speaker>> cKestMaxSpeakerLabelArrays;

} // namespace LSS
