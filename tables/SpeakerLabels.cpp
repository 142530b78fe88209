#include "tables/SpeakerLabels.h"

// All in one file, because the maps at the end refer to the lists before them, and the order of construction
// is defined only within a file.

namespace LSS {

using enum eMixLayout;
using enum ePosition;

// clang-format off

// Channel order of the fixed arrays: ear level from the back to the front, then the height speakers likewise,
// then the top, and the LFE last.
// Label, channel, position, azimuth, elevation, reference.
constexpr std::array<Speaker, 1> cSpeakerLabels_Mono_1_0{{
    {"M",       0, Centre,                  0,   0, -1},
}};

constexpr std::array<Speaker, 2> cSpeakerLabels_Stereo_2_0{{
    {"L",       0, Left,                   30,   0, -1},
    {"R",       1, Right,                 -30,   0, -1},
}};

constexpr std::array<Speaker, 3> cSpeakerLabels_LCR_3_0{{
    {"L",       0, Left,                   30,   0, -1},
    {"C",       1, Centre,                  0,   0, -1},
    {"R",       2, Right,                 -30,   0, -1},
}};

constexpr std::array<Speaker, 4> cSpeakerLabels_LCRS_4_0{{
    {"L",       1, Left,                   30,   0, -1},
    {"C",       2, Centre,                  0,   0, -1},
    {"R",       3, Right,                 -30,   0, -1},
    {"S",       0, CentreSurround,        180,   0, -1},
}};

constexpr std::array<Speaker, 4> cSpeakerLabels_Quad_4_0{{
    {"L",       2, Left,                   30,   0, -1},
    {"R",       3, Right,                 -30,   0, -1},
    {"Ls",      0, SideLeft,              150,   0, -1},
    {"Rs",      1, SideRight,            -150,   0, -1},
}};

constexpr std::array<Speaker, 4> cSpeakerLabels_2_2H{{
    {"L",       0, Left,                   30,   0, -1},
    {"R",       1, Right,                 -30,   0, -1},
    {"HL",      2, HeightLeft,             30,  30, -1},
    {"HR",      3, HeightRight,           -30,  30, -1},
}};

constexpr std::array<Speaker, 5> cSpeakerLabels_Planar_5_0{{
    {"L",       2, Left,                   30,   0, -1},
    {"C",       3, Centre,                  0,   0, -1},
    {"R",       4, Right,                 -30,   0, -1},
    {"Ls",      0, SideLeft,              110,   0, -1},
    {"Rs",      1, SideRight,            -110,   0, -1},
}};

constexpr std::array<Speaker, 6> cSpeakerLabels_Planar_5_1{{
    {"L",       2, Left,                   30,   0,  0},
    {"C",       3, Centre,                  0,   0,  4},
    {"R",       4, Right,                 -30,   0,  1},
    {"Ls",      0, SideLeft,              110,   0,  2},
    {"Rs",      1, SideRight,            -110,   0,  3},
    {"LFE",     5, LFE,                     0,   0,  5},
}};

constexpr std::array<Speaker, 6> cSpeakerLabels_Planar_6_0{{
    {"L",       3, Left,                   30,   0, -1},
    {"C",       4, Centre,                  0,   0, -1},
    {"R",       5, Right,                 -30,   0, -1},
    {"Ls",      0, SideLeft,              110,   0, -1},
    {"Cs",      1, CentreSurround,        180,   0, -1},
    {"Rs",      2, SideRight,            -110,   0, -1},
}};

constexpr std::array<Speaker, 7> cSpeakerLabels_Planar_6_1{{
    {"L",       3, Left,                   30,   0, -1},
    {"C",       4, Centre,                  0,   0, -1},
    {"R",       5, Right,                 -30,   0, -1},
    {"Ls",      0, SideLeft,              110,   0, -1},
    {"Cs",      1, CentreSurround,        180,   0, -1},
    {"Rs",      2, SideRight,            -110,   0, -1},
    {"LFE",     6, LFE,                     0,   0, -1},
}};

constexpr std::array<Speaker, 7> cSpeakerLabels_Planar_7_0{{
    {"L",       4, Left,                   30,   0, -1},
    {"C",       5, Centre,                  0,   0, -1},
    {"R",       6, Right,                 -30,   0, -1},
    {"Ls(s)",   2, SideLeft,               90,   0, -1},
    {"Rs(s)",   3, SideRight,             -90,   0, -1},
    {"Lsr",     0, RearLeft,              150,   0, -1},
    {"Rsr",     1, RearRight,            -150,   0, -1},
}};

// The sides are at 110 degrees here and at 90 in 7.0, as the two are mixed.
constexpr std::array<Speaker, 8> cSpeakerLabels_Planar_7_1{{
    {"L",       4, Left,                   30,   0, -1},
    {"C",       5, Centre,                  0,   0, -1},
    {"R",       6, Right,                 -30,   0, -1},
    {"Ls(s)",   2, SideLeft,              110,   0, -1},
    {"Rs(s)",   3, SideRight,            -110,   0, -1},
    {"Lsr",     0, RearLeft,              150,   0, -1},
    {"Rsr",     1, RearRight,            -150,   0, -1},
    {"LFE",     7, LFE,                     0,   0, -1},
}};

constexpr std::array<Speaker, 6> cSpeakerLabels_Kest_222{{
    {"L",       2, Left,                   30,   0, -1},
    {"R",       3, Right,                 -30,   0, -1},
    {"Ls",      0, SideLeft,              110,   0, -1},
    {"Rs",      1, SideRight,            -110,   0, -1},
    {"HL",      4, HeightLeft,             30,  30, -1},
    {"HR",      5, HeightRight,           -30,  30, -1},
}};

constexpr std::array<Speaker, 8> cSpeakerLabels_Kest_8_0{{
    {"L",       2, Left,                   30,   0, -1},
    {"R",       3, Right,                 -30,   0, -1},
    {"Ls",      0, SideLeft,              110,   0, -1},
    {"Rs",      1, SideRight,            -110,   0, -1},
    {"HL",      6, HeightLeft,             30,  30, -1},
    {"HR",      7, HeightRight,           -30,  30, -1},
    {"HLs",     4, HeightSideLeft,        110,  30, -1},
    {"HRs",     5, HeightSideRight,      -110,  30, -1},
}};

constexpr std::array<Speaker, 10> cSpeakerLabels_Kest_9_1{{
    {"L",       2, Left,                   30,   0,  0},
    {"C",       3, Centre,                  0,   0,  4},
    {"R",       4, Right,                 -30,   0,  1},
    {"Ls",      0, SideLeft,              110,   0,  2},
    {"Rs",      1, SideRight,            -110,   0,  3},
    {"LFE",     9, LFE,                     0,   0,  5},
    {"HL",      7, HeightLeft,             30,  30,  6},
    {"HR",      8, HeightRight,           -30,  30,  7},
    {"HLs",     5, HeightSideLeft,        110,  30,  8},
    {"HRs",     6, HeightSideRight,      -110,  30,  9},
}};

constexpr std::array<Speaker, 11> cSpeakerLabels_Kest_10_1{{
    {"L",       2, Left,                   30,   0,  0},
    {"C",       3, Centre,                  0,   0,  4},
    {"R",       4, Right,                 -30,   0,  1},
    {"Ls",      0, SideLeft,              110,   0,  2},
    {"Rs",      1, SideRight,            -110,   0,  3},
    {"LFE",    10, LFE,                     0,   0,  5},
    {"HL",      7, HeightLeft,             30,  30,  6},
    {"HR",      8, HeightRight,           -30,  30,  7},
    {"HLs",     5, HeightSideLeft,        110,  30,  8},
    {"HRs",     6, HeightSideRight,      -110,  30,  9},
    {"T",       9, Top,                     0,  90, 10},
}};

constexpr std::array<Speaker, 12> cSpeakerLabels_Kest_11_1{{
    {"L",       2, Left,                   30,   0,  0},
    {"C",       3, Centre,                  0,   0,  4},
    {"R",       4, Right,                 -30,   0,  1},
    {"Ls",      0, SideLeft,              110,   0,  2},
    {"Rs",      1, SideRight,            -110,   0,  3},
    {"LFE",    11, LFE,                     0,   0,  5},
    {"HL",      7, HeightLeft,             30,  30,  6},
    {"HC",      8, HeightCentre,            0,  30, 11},
    {"HR",      9, HeightRight,           -30,  30,  7},
    {"HLs",     5, HeightSideLeft,        110,  30,  8},
    {"HRs",     6, HeightSideRight,      -110,  30,  9},
    {"T",      10, Top,                     0,  90, 10},
}};

// Only the LFE is in the reference order.
constexpr std::array<Speaker, 12> cSpeakerLabels_Kest_11_1_740{{
    {"L",       4, Left,                   30,   0, -1},
    {"C",       5, Centre,                  0,   0, -1},
    {"R",       6, Right,                 -30,   0, -1},
    {"Ls(s)",   2, SideLeft,               90,   0, -1},
    {"Rs(s)",   3, SideRight,             -90,   0, -1},
    {"Lsr",     0, RearLeft,              150,   0, -1},
    {"Rsr",     1, RearRight,            -150,   0, -1},
    {"LFE",    11, LFE,                     0,   0,  5},
    {"HL",      9, HeightLeft,             30,  30, -1},
    {"HR",     10, HeightRight,           -30,  30, -1},
    {"HLs",     7, HeightSideLeft,         90,  30, -1},
    {"HRs",     8, HeightSideRight,       -90,  30, -1},
}};

constexpr std::array<Speaker, 14> cSpeakerLabels_Kest_13_1_751{{
    {"L",       4, Left,                   30,   0, -1},
    {"C",       5, Centre,                  0,   0, -1},
    {"R",       6, Right,                 -30,   0, -1},
    {"Ls(s)",   2, SideLeft,               90,   0, -1},
    {"Rs(s)",   3, SideRight,             -90,   0, -1},
    {"Lsr",     0, RearLeft,              150,   0, -1},
    {"Rsr",     1, RearRight,            -150,   0, -1},
    {"LFE",    13, LFE,                     0,   0, -1},
    {"HL",      9, HeightLeft,             30,  30, -1},
    {"HC",     10, HeightCentre,            0,  30, -1},
    {"HR",     11, HeightRight,           -30,  30, -1},
    {"HLs",     7, HeightSideLeft,         90,  30, -1},
    {"HRs",     8, HeightSideRight,       -90,  30, -1},
    {"T",      12, Top,                     0,  90, -1},
}};

// The rears have no direction, as the mixing system expects.
constexpr std::array<Speaker, 10> cSpeakerLabels_DolbyAtmos_9_1{{
    {"L",       4, Left,                   30,   0, -1},
    {"C",       5, Centre,                  0,   0, -1},
    {"R",       6, Right,                 -30,   0, -1},
    {"Ls(s)",   2, SideLeft,              110,   0, -1},
    {"Rs(s)",   3, SideRight,            -110,   0, -1},
    {"Lsr",     0, RearLeft,                0,   0, -1},
    {"Rsr",     1, RearRight,               0,   0, -1},
    {"LFE",     9, LFE,                     0,   0, -1},
    {"Lts",     7, TopLeft,                90,  60, -1},
    {"Rts",     8, TopRight,              -90,  60, -1},
}};

// 6.1 + 6H + T: labels only, without a layout record.
constexpr std::array<Speaker, 14> cSpeakerLabels_Kest_13_1_661{{
    {"L",       3, Left,                   30,   0,  0},
    {"C",       4, Centre,                  0,   0,  4},
    {"R",       5, Right,                 -30,   0,  1},
    {"Ls",      0, SideLeft,              110,   0,  2},
    {"Cs",      1, CentreSurround,        180,   0, 12},
    {"Rs",      2, SideRight,            -110,   0,  3},
    {"LFE",    13, LFE,                     0,   0,  5},
    {"HL",      9, HeightLeft,             30,  30,  6},
    {"HC",     10, HeightCentre,            0,  30, 11},
    {"HR",     11, HeightRight,           -30,  30,  7},
    {"HLs",     6, HeightSideLeft,        110,  30,  8},
    {"HCs",     7, HeightCentreSurround,  180,  30, 13},
    {"HRs",     8, HeightSideRight,      -110,  30,  9},
    {"T",      12, Top,                     0,  90, 10},
}};

// Channel order of the large layouts: left, centre, right first, then no single rule. The wides and the back top
// pair have channels after the LFE's.
const std::vector<Speaker> cSpeakerLabels_KestMax_20_1{
    {"L",       0, Left,                   30,   0, -1},
    {"C",       1, Centre,                  0,   0, -1},
    {"R",       2, Right,                 -30,   0, -1},
    {"Lssf",    3, SideFrontLeft,          60,   0, -1},
    {"Rssf",    4, SideFrontRight,        -60,   0, -1},
    {"Lssb",    5, SideBackLeft,          110,   0, -1},
    {"Rssb",    6, SideBackRight,        -110,   0, -1},
    {"Lsr",     7, RearLeft,              150,   0, -1},
    {"Rsr",     8, RearRight,            -150,   0, -1},
    {"HL",      9, HeightLeft,             30,  30, -1},
    {"HC",     10, HeightCentre,            0,  30, -1},
    {"HR",     11, HeightRight,           -30,  30, -1},
    {"HLssf",  12, HeightSideFrontLeft,    60,  30, -1},
    {"HRssf",  13, HeightSideFrontRight,  -60,  30, -1},
    {"HLssb",  14, HeightSideBackLeft,    110,  30, -1},
    {"HRssb",  15, HeightSideBackRight,  -110,  30, -1},
    {"HLsr",   16, HeightRearLeft,        150,  30, -1},
    {"HRsr",   17, HeightRearRight,      -150,  30, -1},
    {"TL",     18, TopLeft,                90,  60, -1},
    {"TR",     19, TopRight,              -90,  60, -1},
    {"LFE",    20, LFE,                     0,   0, -1},
};

const std::vector<Speaker> cSpeakerLabels_KestMax_22_1{
    {"L",       0, Left,                   30,   0, -1},
    {"C",       1, Centre,                  0,   0, -1},
    {"R",       2, Right,                 -30,   0, -1},
    {"Lssf",    3, SideFrontLeft,          60,   0, -1},
    {"Rssf",    4, SideFrontRight,        -60,   0, -1},
    {"Lssb",    5, SideBackLeft,          110,   0, -1},
    {"Rssb",    6, SideBackRight,        -110,   0, -1},
    {"Lsr",     7, RearLeft,              150,   0, -1},
    {"Rsr",     8, RearRight,            -150,   0, -1},
    {"HL",      9, HeightLeft,             30,  30, -1},
    {"HC",     10, HeightCentre,            0,  30, -1},
    {"HR",     11, HeightRight,           -30,  30, -1},
    {"HLssf",  12, HeightSideFrontLeft,    60,  30, -1},
    {"HRssf",  13, HeightSideFrontRight,  -60,  30, -1},
    {"HLssb",  14, HeightSideBackLeft,    110,  30, -1},
    {"HRssb",  15, HeightSideBackRight,  -110,  30, -1},
    {"HLsr",   16, HeightRearLeft,        150,  30, -1},
    {"HRsr",   17, HeightRearRight,      -150,  30, -1},
    {"TLf",    18, TopFrontLeft,           60,  60, -1},
    {"TRf",    19, TopFrontRight,         -60,  60, -1},
    {"TLb",    21, TopBackLeft,           110,  60, -1},
    {"TRb",    22, TopBackRight,         -110,  60, -1},
    {"LFE",    20, LFE,                     0,   0, -1},
};

const std::vector<Speaker> cSpeakerLabels_KestMax_26_1{
    {"L",       0, Left,                   30,   0, -1},
    {"C",       1, Centre,                  0,   0, -1},
    {"R",       2, Right,                 -30,   0, -1},
    {"Lw",     23, WideLeft,               40,   0, -1},
    {"Rw",     24, WideRight,             -40,   0, -1},
    {"Lssf",    3, SideFrontLeft,          60,   0, -1},
    {"Rssf",    4, SideFrontRight,        -60,   0, -1},
    {"Lssb",    5, SideBackLeft,          110,   0, -1},
    {"Rssb",    6, SideBackRight,        -110,   0, -1},
    {"Lsr",     7, RearLeft,              150,   0, -1},
    {"Rsr",     8, RearRight,            -150,   0, -1},
    {"HL",      9, HeightLeft,             30,  30, -1},
    {"HC",     10, HeightCentre,            0,  30, -1},
    {"HR",     11, HeightRight,           -30,  30, -1},
    {"HLw",    25, HeightWideLeft,         40,  30, -1},
    {"HRw",    26, HeightWideRight,       -40,  30, -1},
    {"HLssf",  12, HeightSideFrontLeft,    60,  30, -1},
    {"HRssf",  13, HeightSideFrontRight,  -60,  30, -1},
    {"HLssb",  14, HeightSideBackLeft,    110,  30, -1},
    {"HRssb",  15, HeightSideBackRight,  -110,  30, -1},
    {"HLsr",   16, HeightRearLeft,        150,  30, -1},
    {"HRsr",   17, HeightRearRight,      -150,  30, -1},
    {"TLf",    18, TopFrontLeft,           60,  60, -1},
    {"TRf",    19, TopFrontRight,         -60,  60, -1},
    {"TLb",    21, TopBackLeft,           110,  60, -1},
    {"TRb",    22, TopBackRight,         -110,  60, -1},
    {"LFE",    20, LFE,                     0,   0, -1},
};

// "BrFC" is the label in use for the bottom front centre.
const std::vector<Speaker> cSpeakerLabels_NHK_22_2{
    {"FL",      0, Left,                   30,   0, -1},
    {"FC",      1, Centre,                  0,   0, -1},
    {"FR",      2, Right,                 -30,   0, -1},
    {"FLc",    21, FrontLeftCentre,        40,   0, -1},
    {"FRc",    22, FrontRightCentre,      -40,   0, -1},
    {"SiL",     3, SideLeft,              110,   0, -1},
    {"SiR",     4, SideRight,            -110,   0, -1},
    {"BL",      7, RearLeft,              150,   0, -1},
    {"BR",      8, RearRight,            -150,   0, -1},
    {"BC",      5, CentreSurround,        180,   0, -1},
    {"TpFL",    9, HeightLeft,             30,  30, -1},
    {"TpFC",   10, HeightCentre,            0,  30, -1},
    {"TpFR",   11, HeightRight,           -30,  30, -1},
    {"TpC",    14, Top,                     0,  90, -1},
    {"TpSiL",  12, HeightSideLeft,        110,  30, -1},
    {"TpSiR",  13, HeightSideRight,      -110,  30, -1},
    {"TpBL",   16, HeightRearLeft,        150,  30, -1},
    {"TpBR",   17, HeightRearRight,      -150,  30, -1},
    {"TpBC",    6, HeightCentreSurround,  180,  30, -1},
    {"BtFL",   18, BottomFrontLeft,        30, -30, -1},
    {"BtFR",   19, BottomFrontRight,      -30, -30, -1},
    {"BrFC",   15, BottomFrontCentre,       0, -30, -1},
    {"LFE1",   20, LFE1,                    0,   0, -1},
    {"LFE2",   23, LFE2,                    0,   0, -1},
};

const std::map<eMixLayout, std::span<const Speaker>> cSpeakerLabels{
    {Mono,             cSpeakerLabels_Mono_1_0},
    {Stereo,           cSpeakerLabels_Stereo_2_0},
    {LCR,              cSpeakerLabels_LCR_3_0},
    {LCRS,             cSpeakerLabels_LCRS_4_0},
    {Quad,             cSpeakerLabels_Quad_4_0},
    {OnScreen_2_2H,    cSpeakerLabels_2_2H},
    {Surround_5_0,     cSpeakerLabels_Planar_5_0},
    {Surround_5_1,     cSpeakerLabels_Planar_5_1},
    {Surround_6_0,     cSpeakerLabels_Planar_6_0},
    {Surround_6_1,     cSpeakerLabels_Planar_6_1},
    {Surround_7_0,     cSpeakerLabels_Planar_7_0},
    {Surround_7_1,     cSpeakerLabels_Planar_7_1},
    {Kest_222,         cSpeakerLabels_Kest_222},
    {Kest_8_0,         cSpeakerLabels_Kest_8_0},
    {Kest_9_1,         cSpeakerLabels_Kest_9_1},
    {Kest_10_1,        cSpeakerLabels_Kest_10_1},
    {Kest_11_1,        cSpeakerLabels_Kest_11_1},
    {Kest_11_1_740,    cSpeakerLabels_Kest_11_1_740},
    {Kest_13_1_751,    cSpeakerLabels_Kest_13_1_751},
    {Atmos_9_1,        cSpeakerLabels_DolbyAtmos_9_1},
    {Kest_13_1_661,    cSpeakerLabels_Kest_13_1_661},
    {Kest_11_1_Cinema, cSpeakerLabels_Kest_11_1},
    {Kest_13_1_Cinema, cSpeakerLabels_Kest_13_1_751},
    {KestMax_20_1,     cSpeakerLabels_KestMax_20_1},
    {KestMax_22_1,     cSpeakerLabels_KestMax_22_1},
    {KestMax_26_1,     cSpeakerLabels_KestMax_26_1},
    {NHK_22_2,         cSpeakerLabels_NHK_22_2},
};

const std::map<eMixLayout, std::span<const Speaker>> cKestMaxSpeakerLabelArrays{
    {KestMax_20_1,     cSpeakerLabels_KestMax_20_1},
    {KestMax_22_1,     cSpeakerLabels_KestMax_22_1},
    {KestMax_26_1,     cSpeakerLabels_KestMax_26_1},
    {NHK_22_2,         cSpeakerLabels_NHK_22_2},
};
// clang-format on

} // namespace LSS
