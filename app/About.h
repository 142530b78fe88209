// The agent's name, version and licence.
#pragma once

#include <string>

namespace Kest::App {

struct About {
    std::string name;
    std::string version;
    std::string licence;
};

const About& about();

} // namespace Kest::App
