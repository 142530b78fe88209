// The speaker layouts of the mixing system: the id, name, channel counts and preset of each.
#pragma once

#include <cstdint>
#include <map>

namespace LSS {

// The layout ids that the host and the settings file use. 23 is not used.
enum class eMixLayout : std::int32_t {
    Mono = 0,
    Stereo = 1,
    LCR = 2,
    LCRS = 3,
    Quad = 4,
    OnScreen_2_2H = 5,
    Surround_5_0 = 6,
    Surround_5_1 = 7,
    Surround_6_0 = 8,
    Surround_6_1 = 9,
    Surround_7_0 = 10,
    Surround_7_1 = 11,
    Kest_222 = 12,
    Kest_8_0 = 13,
    Kest_9_1 = 14,
    Kest_10_1 = 15,
    Kest_11_1 = 16,
    Kest_11_1_740 = 17,
    Kest_13_1_751 = 18,
    Atmos_9_1 = 19,
    Kest_13_1_661 = 20, // in `cSpeakerLabels` (SpeakerLabels.h), but in neither map of this header
    Kest_11_1_Cinema = 21,
    Kest_13_1_Cinema = 22,
    KestMax_20_1 = 24,
    KestMax_22_1 = 25,
    KestMax_26_1 = 26,
    NHK_22_2 = 27,
};

struct MixLayout {
    const char* name;         // NUL-terminated, never null
    std::int32_t channels;    // number of loudspeakers, without LFEs
    std::int32_t lfeChannels; // 0 to 2
    std::int32_t flag;        // 0 or 1; used by the host only
    const char* presetName;   // NUL-terminated; null if the layout has no preset
};

// Use `find` to look up an id: neither map contains all ids.
extern const std::map<eMixLayout, MixLayout> cMixLayouts;     // ids 0 to 19, 21, 22
extern const std::map<eMixLayout, MixLayout> cKestMaxLayouts; // ids 24 to 27

} // namespace LSS
