// The speaker configurations of the menu, the layout of each, and the defaults of the parameters in the
// agent's record.
#pragma once

#include "tables/MixLayouts.h"

#include <cstdint>
#include <map>
#include <string>

namespace Kest::Settings {

// The title of each speaker configuration in the menu, by id. The menu shows the titles in the order of the
// ids.
extern const std::map<std::int32_t, std::string> sSpkrConf2Name;

// The layout of each speaker configuration, by id. Each layout belongs to one configuration only.
extern const std::map<std::int32_t, LSS::eMixLayout> sSpkrConf2Layout;

// The default values of the parameters 32 to 41, by parameter number. The number is the index in
// `LIPC::ClientEntry::params` of the agent's record. Solo mode, number 4, is not included.
extern const std::map<std::int32_t, float> cParameterDefaults;

// Returns the id of the speaker configuration whose layout has the id `layout`; -1 if there is none. `layout`
// may be any integer, for example one from a settings file.
std::int32_t speakerConfigurationOfLayout(std::int32_t layout);

} // namespace Kest::Settings
