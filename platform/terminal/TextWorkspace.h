// The desktop services for an agent in a terminal.
#pragma once

#include "log/Output.h"
#include "platform/posix/PosixWorkspace.h"
#include "text/Printable.h"

namespace Kest::Terminal {

/// Prints to standard output what a desktop would show. Main thread only.
class TextWorkspace final : public Posix::PosixWorkspace {
public:
    using PosixWorkspace::PosixWorkspace;

    void selectFile(const std::string& folder) override
    {
        Lct::print("output folder %s\n", Text::printable(folder).c_str());
    }
    void showAboutPanel(const App::About& about) override
    {
        Lct::print("about %s %s, %s\n", about.name.c_str(), about.version.c_str(), about.licence.c_str());
    }
};

} // namespace Kest::Terminal
