#include "platform/terminal/TextWorkspace.h"

#include "log/Output.h"
#include "platform/terminal/TextMenu.h"

namespace Kest::Terminal {

void TextWorkspace::selectFile(const std::string& folder)
{
    Lct::print("output folder %s\n", printable(folder).c_str());
}

void TextWorkspace::showAboutPanel(const App::About& about)
{
    Lct::print("about %s %s, %s\n", about.name.c_str(), about.version.c_str(), about.licence.c_str());
}

} // namespace Kest::Terminal
