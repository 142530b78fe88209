// The speaker configurations of the menu, the layout of each, and the defaults of the host parameters.
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

// Returns the lowest speaker configuration whose layout has the id `layout`, -1 if there is none. The id is
// an integer because it is read from a settings file and may be no layout.
std::int32_t speakerConfigurationOfLayout(std::int32_t layout);

} // namespace Kest::Settings
