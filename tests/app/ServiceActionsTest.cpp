// Actions on the installation, and the application's end.
#include "tests/app/Agent.h"

namespace {

using namespace Kest::Test;
using testing::ElementsAre;
namespace fs = std::filesystem;

TEST(Services, StartTheirPrograms)
{
    Agent agent;
    agent.start();
    const auto& paths = agent.place.paths;
    fs::remove(paths.lastUserMarker);
    agent.workspace.whenRun = [&] { EXPECT_TRUE(fs::exists(paths.lastUserMarker)); };
    for (const char* path : {"Restart Host Service", "Restart Host Service", "Architecture/32 Bit",
                             "Architecture/64 Bit", "Open Uninstaller", "About Kest Settings"})
        EXPECT_TRUE(agent.choose(path)) << path;
    const auto restart = "run " + paths.restartCommand;
    EXPECT_THAT(agent.workspace.asked,
                ElementsAre(restart, restart, "launch " + paths.uninstaller, "about Kest Settings"));

    agent.workspace.applicationsLaunch = false;
    captureErrors();
    EXPECT_TRUE(agent.choose("Open Uninstaller"));
    EXPECT_THAT(capturedErrors(), testing::HasSubstr("Uninstall failed to launch\n"));

    EXPECT_EQ(agent.delegate.menu().statusMenu().itemArray().back()->title(), "Quit Kest Settings");
    EXPECT_FALSE(agent.frontEnd.hasQuit);
    EXPECT_TRUE(agent.choose("Quit Kest Settings"));
    EXPECT_TRUE(agent.frontEnd.hasQuit);
}

TEST(Delegate, EndsTheBackendBeforeItUnloadsTheLaunchAgent)
{
    Agent agent;
    const auto unload = "run /bin/launchctl unload " + agent.place.paths.launchAgent;
    const auto& fifo = agent.place.paths.encodingProgressFifo;
    agent.start();
    EXPECT_EQ(agent.frontEnd.imageName, "Kestronics_Logo_19px");
    ASSERT_TRUE(agent.report(4711, "/Out/Film/Film.wav"));
    ASSERT_TRUE(fs::exists(fifo));
    agent.workspace.whenRun = [&] { EXPECT_FALSE(fs::exists(fifo)); };
    msg_from_backend_callback(&agent.delegate, 2, 0, ""); // its job runs after the end

    agent.delegate.applicationWillTerminate();
    EXPECT_THAT(agent.workspace.asked, ElementsAre(unload));
    EXPECT_EQ(agent.frontEnd.runJobs(), 1);
    EXPECT_THAT(agent.delegate.notes, ElementsAre());
    EXPECT_FALSE(agent.choose("Quit Kest Settings"));
}

TEST(Delegate, IgnoresUnknownItemsAndWhatArrivesBeforeItsStart)
{
    Agent agent;
    EXPECT_FALSE(agent.delegate.choose(1));
    agent.delegate.menuWillOpen(1);
    agent.delegate.receivedMsgFromBackend(50, 4711, "Film_Mix");
    agent.delegate.applicationWillTerminate();
    EXPECT_EQ(agent.workspace.asked.size(), 1U);
    EXPECT_EQ(agent.delegate.hostState(), Kest::Settings::HostState());
    EXPECT_EQ(agent.delegate.startError(), 0);

    agent.start();
    EXPECT_EQ(agent.entry(4711), nullptr);
    agent.delegate.menuWillOpen(99'999);
}

} // namespace
