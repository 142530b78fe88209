#include "app/About.h"

namespace Kest::App {

const About& about()
{
    static const About self{"Kest Settings", KEST_VERSION, "GPL-3.0-or-later"};
    return self;
}

} // namespace Kest::App
