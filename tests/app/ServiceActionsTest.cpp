// Actions on the installation, and the end of the application.
#include "tests/app/Agent.h"

namespace {

using namespace Kest::App;
using Kest::Test::Agent;
using testing::ElementsAre;

TEST(Services, StartWhatTheyAreFor)
{
    Agent agent;
    agent.start();
    const auto& paths = agent.place.paths;
    std::filesystem::remove(paths.lastUserMarker);
    agent.workspace.whenRun = [&] { EXPECT_TRUE(std::filesystem::exists(paths.lastUserMarker)); };
    for (const char* path : {"Restart Host Service", "Restart Host Service", "Architecture/32 Bit",
                             "Architecture/64 Bit", "Open Uninstaller", "About Kest Settings"})
        EXPECT_TRUE(agent.choose(path)) << path;
    const auto restart = "run " + paths.restartCommand;
    const auto uninstall = "launch " + paths.uninstaller;
    EXPECT_THAT(agent.workspace.asked, ElementsAre(restart, restart, uninstall, "about Kest Settings"));

    agent.workspace.applicationsLaunch = false;
    Kest::Test::captureErrors();
    EXPECT_TRUE(agent.choose("Open Uninstaller"));
    EXPECT_THAT(Kest::Test::capturedErrors(), testing::HasSubstr("Uninstall failed to launch\n"));

    EXPECT_EQ(agent.delegate.menu().statusMenu().itemArray().back()->title(), "Quit Kest Settings");
    EXPECT_FALSE(agent.frontEnd.hasQuit);
    EXPECT_TRUE(agent.choose("Quit Kest Settings"));
    EXPECT_TRUE(agent.frontEnd.hasQuit);
}

TEST(Terminating, EndsTheBackendBeforeItUnloadsTheLaunchAgent)
{
    Agent agent;
    const auto unload = "run /bin/launchctl unload " + agent.place.paths.launchAgent;
    agent.delegate.applicationWillTerminate();
    EXPECT_THAT(agent.workspace.asked, ElementsAre(unload)) << "without a Backend, too";
    agent.start();
    EXPECT_EQ(agent.frontEnd.imageName, "Kestronics_Logo_19px");
    ASSERT_TRUE(agent.report(4711, "/Out/Film/Film.wav"));
    const auto& fifo = agent.place.paths.encodingProgressFifo;
    ASSERT_TRUE(std::filesystem::exists(fifo));
    agent.workspace.whenRun = [&] { EXPECT_FALSE(std::filesystem::exists(fifo)); };
    msg_from_backend_callback(&agent.delegate, 2, 0, ""); // its job comes when all is over

    agent.delegate.applicationWillTerminate();
    EXPECT_THAT(agent.workspace.asked, ElementsAre(unload, unload));
    EXPECT_EQ(agent.frontEnd.runJobs(), 1);
    EXPECT_THAT(agent.delegate.notes, ElementsAre());
    EXPECT_FALSE(agent.choose("Quit Kest Settings"));
}

TEST(Delegate, IgnoresUnknownItemsAndWhatArrivesBeforeItsStart)
{
    Kest::Test::Agent agent;
    EXPECT_FALSE(agent.delegate.choose(1));
    agent.delegate.menuWillOpen(1);
    agent.delegate.receivedMsgFromBackend(50, 4711, "Film_Mix");
    agent.delegate.applicationWillTerminate();
    EXPECT_EQ(agent.delegate.hostState(), Kest::Settings::HostState());
    EXPECT_EQ(agent.delegate.startError(), 0);

    agent.start();
    EXPECT_EQ(agent.entry(4711), nullptr);
    EXPECT_FALSE(agent.delegate.choose(99'999));
    agent.delegate.menuWillOpen(99'999);
    EXPECT_FALSE(agent.choose("Encoding History/Clear History")) << "greyed";
}

} // namespace
