// What the settings menu offers and what a fresh installation starts with: the speaker configurations, the
// layout behind each, and the defaults of the host parameters.
#pragma once

#include "tables/MixLayouts.h"

#include <cstdint>
#include <map>
#include <string>

namespace Kest::Settings {

// Speaker configuration id to menu title; ascending ids are the order of the menu.
extern const std::map<std::int32_t, std::string> sSpkrConf2Name;

// Speaker configuration id to layout, one-to-one.
extern const std::map<std::int32_t, LSS::eMixLayout> sSpkrConf2Layout;

// Parameter number (a slot number of the settings client in the shared session) to default value.
extern const std::map<std::int32_t, float> cParameterDefaults;

// The lowest speaker configuration whose layout has the id `layout`, -1 when none has. The id is a plain
// integer because it comes out of a settings file and may name no layout at all.
std::int32_t speakerConfigurationOfLayout(std::int32_t layout);

} // namespace Kest::Settings
