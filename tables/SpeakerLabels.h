// The loudspeakers of every layout: label, channel, position and direction, one list per layout.
#pragma once

#include "tables/MixLayouts.h"

#include <array>
#include <cstdint>
#include <map>
#include <span>
#include <vector>

namespace LSS {

// The nominal position of a loudspeaker. `Speaker` contains the exact direction, which depends on the layout.
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
    std::int32_t channelIndex; // index of the loudspeaker's channel in the layout, from 0
    ePosition position;
    float azimuth;   // degrees from the front, positive to the left
    float elevation; // degrees, positive upwards
    // Index of the loudspeaker in the order L, R, Ls, Rs, C, LFE, HL, HR, HLs, HRs, T, HC, Cs, HCs; -1 if it
    // is not given.
    std::int32_t referenceIndex;
};

// The lists are not sorted by `channelIndex`.
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

// The list of each layout. `Kest_11_1_Cinema` and `Kest_13_1_Cinema` have the lists of `Kest_11_1` and
// `Kest_13_1_751`. Use `find` to look up an id. The views are valid until the process ends.
extern const std::map<eMixLayout, std::span<const Speaker>> cSpeakerLabels;

// The lists of the layouts in `cKestMaxLayouts`. `cSpeakerLabels` contains these lists too.
extern const std::map<eMixLayout, std::span<const Speaker>> cKestMaxSpeakerLabelArrays;

} // namespace LSS
