// The desktop's services where there is only text.
#pragma once

#include "platform/posix/PosixWorkspace.h"

namespace Kest::Terminal {

/// Says on standard output what a desktop would show.
class TextWorkspace final : public Posix::PosixWorkspace {
public:
    using PosixWorkspace::PosixWorkspace;

    void selectFile(const std::string& folder) override;
    void showAboutPanel(const App::About& about) override;
};

} // namespace Kest::Terminal
