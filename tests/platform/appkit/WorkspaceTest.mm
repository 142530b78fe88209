// The real services of AppKit.
#include "platform/appkit/AppKitWorkspace.h"
#include "tests/platform/appkit/AppKitAgent.h"

#include <sys/stat.h>

namespace Kest::Test {
namespace {

class AppKitServices : public testing::Test {
protected:
    /// A program that writes its words into a file, `told`.
    std::string program(const std::string& name, mode_t mode = 0755)
    {
        writeFile(folder / name, "#!/bin/sh\necho \"$@\" >'" + (folder / "told") + "'\n");
        chmod((folder / name).c_str(), mode);
        return folder / name;
    }

    const TemporaryFolder folder;
    AppKit::AppKitWorkspace workspace;
};

TEST_F(AppKitServices, SayWhatCannotBeStartedAndStartTheNextWithItsWords)
{
    EXPECT_FALSE(workspace.run(folder / "none", {}));
    EXPECT_FALSE(workspace.run(program("no program", 0644), {}));
    EXPECT_FALSE(workspace.launchApplication(folder / "None.app"));
    testing::internal::CaptureStderr();
    workspace.log("Uninstall failed to launch");
    EXPECT_THAT(Kest::Test::capturedErrors(), testing::HasSubstr("Uninstall failed to launch\n"));
    workspace.selectFile(folder.path()); // there is no file viewer
    EXPECT_TRUE(workspace.run(program("a program"), {"unload", "/Library/a b"}));
    EXPECT_TRUE(runLoopUntil([&] { return readFile(folder / "told") == "unload /Library/a b\n"; }));
}

TEST_F(AppKitServices, ShowTheAboutPanel)
{
    workspace.showAboutPanel(App::about());
    const auto panel = [] {
        for (NSWindow* window in [NSApp windows])
            if ([window isVisible] && [window isKindOfClass:[NSPanel class]] &&
                [window level] == NSNormalWindowLevel)
                return window;
        return (NSWindow*)nil;
    };
    EXPECT_TRUE(runLoopUntil([&] { return panel() != nil; }));
    [panel() close];
}

} // namespace
} // namespace Kest::Test
