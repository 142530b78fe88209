#include "tables/MixLayouts.h"

namespace LSS {

using enum eMixLayout;

// Name, channels, LFEs, flag, preset. The cinema variants have separate ids and repeat the rows of the
// layouts that they derive from.
// clang-format off
const std::map<eMixLayout, MixLayout> cMixLayouts{
    {Mono,             {"Mono",                   1, 0, 0, nullptr}},
    {Stereo,           {"Stereo",                 2, 0, 0, nullptr}},
    {LCR,              {"LCR",                    3, 0, 1, nullptr}},
    {LCRS,             {"LCRS",                   4, 0, 1, nullptr}},
    {Quad,             {"Quad",                   4, 0, 1, "Kest_4_0_Quad"}},
    {OnScreen_2_2H,    {"OnScreen 2+2H",          4, 0, 0, nullptr}},
    {Surround_5_0,     {"Surround 5.0",           5, 0, 1, "Kest_5_0"}},
    {Surround_5_1,     {"Surround 5.1",           5, 1, 1, "Kest_5_1"}},
    {Surround_6_0,     {"Surround 6.0",           6, 0, 1, "Kest_6_0_Quad"}},
    {Surround_6_1,     {"Surround 6.1",           6, 1, 1, nullptr}},
    {Surround_7_0,     {"Surround 7.0",           7, 0, 1, nullptr}},
    {Surround_7_1,     {"Surround 7.1",           7, 1, 1, nullptr}},
    {Kest_222,         {"Kest-222",               6, 0, 1, "Kest_222_Stereo"}},
    {Kest_8_0,         {"Kest 8.0",               8, 0, 1, "Kest_8_0_Quad"}},
    {Kest_9_1,         {"Kest 9.1",               9, 1, 1, "Kest_9_1"}},
    {Kest_10_1,        {"Kest 10.1",             10, 1, 1, "Kest_10_1"}},
    {Kest_11_1,        {"Kest 11.1",             11, 1, 1, "Kest_11_1"}},
    {Kest_11_1_740,    {"Kest 11.1 (7.1+4H)",    11, 1, 1, "Kest_11_1_Ext_B"}},
    {Kest_13_1_751,    {"Kest 13.1 (7.1+5H+T)",  13, 1, 1, "Kest_13_1_Ext_B"}},
    {Atmos_9_1,        {"Atmos",                  9, 1, 0, nullptr}},
    {Kest_11_1_Cinema, {"Kest 11.1",             11, 1, 1, "Kest_11_1"}},
    {Kest_13_1_Cinema, {"Kest 13.1 (7.1+5H+T)",  13, 1, 1, "Kest_13_1_Ext_B"}},
};

const std::map<eMixLayout, MixLayout> cKestMaxLayouts{
    {KestMax_20_1,     {"KestMax 20.1",          20, 1, 0, nullptr}},
    {KestMax_22_1,     {"KestMax 22.1",          22, 1, 0, nullptr}},
    {KestMax_26_1,     {"KestMax 26.1",          26, 1, 0, nullptr}},
    {NHK_22_2,         {"NHK 22.2",              22, 2, 0, nullptr}},
};
// clang-format on

} // namespace LSS
