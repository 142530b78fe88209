#include "platform/terminal/TextWorkspace.h"

#include "platform/terminal/TextMenu.h"

#include <cstdio>

namespace Kest::Terminal {

void TextWorkspace::selectFile(const std::string& folder)
{
    std::printf("output folder %s\n", printable(folder).c_str());
}

void TextWorkspace::showAboutPanel(const App::About& about)
{
    std::printf("about %s %s, %s\n", about.name.c_str(), about.version.c_str(), about.licence.c_str());
}

} // namespace Kest::Terminal
