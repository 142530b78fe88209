// The menu in words: a whole dialogue, with the lines for the menu, its changes and what cannot be done.
#include "platform/terminal/TextMenu.h"

#include "platform/terminal/ItemSearch.h"
#include "platform/terminal/TextFrontEnd.h"
#include "tests/app/Agent.h"

#include <sstream>

namespace {

using namespace Kest::App;
using namespace Kest::Terminal;

TEST(ItemSearch, FindsItemsOfOneTitleByTheirNumberOnly)
{
    MenuModel model;
    for (const char* title : {"Film", "Film", "Film #2", "Other"})
        model.statusMenu().addItem(std::make_unique<MenuItem>(ItemProperties{.title = title}));
    const auto menu = takeSnapshot(model);
    EXPECT_EQ(findByPath(menu, "Film").error,
              "several items \"Film\" in the menu: add #1, #2, ... to the name");
    EXPECT_EQ(findByPath(menu, "Film #1").item, &menu.items[0]);
    EXPECT_EQ(findByPath(menu, "Film #2").item, nullptr) << "of one or of the other";
    EXPECT_EQ(findByPath(menu, "Other").item, &menu.items[3]);
    EXPECT_EQ(findByPath(menu, "Film #3").error, "no item \"Film #3\" in the menu");
}

// Without the lines that the Backend's threads print at any time, and without empty ones.
std::string linesOfTheFrontEnd(const std::string& printed)
{
    std::istringstream lines(printed);
    std::string kept = "\n";
    for (std::string line; std::getline(lines, line);)
        if (!line.empty() && !line.starts_with("reading from : ") && !line.starts_with("fifo fd = ") &&
            !line.starts_with("bus "))
            kept += line + "\n";
    return kept;
}

TEST(TextFrontEnd, TakesChoicesAndTellsWhatChangesUntilItIsToldToQuit)
{
    Kest::Test::TestPlace place;
    Kest::Test::FakeWorkspace workspace;
    TextFrontEnd frontEnd;
    KestSettingsAppDelegate delegate(frontEnd, workspace, place.paths);
    delegate.awakeFromNib();
    const auto annex = place.paths.facilitiesFolder + "/Ann\x7F > ex";
    workspace.whenRun = [&] { std::filesystem::create_directories(annex); }; // after the menu was printed
    Kest::Test::writeFile(
        place.folder / "script",
        "choose Restart Host Service\nchoose Solo Mode > Exclusive (XOR)\r\nchoose Solo Mode\n"
        "choose Encoding History > Clear History\nchoose \x1B[2J\n"
        "choose Speaker Configuration > Mono\nopen Latency Compensation\n" // hidden
        "open Monitoring Facility\nchoose Monitoring Facility > Ann? > ex\nopen DAW Link "
        "Control\nfrobnicate\n" +
            std::string(8192, 'x') + "quit\n\n  menu  \nquit\nfrobnicate\n");
    const int script = open((place.folder / "script").c_str(), O_RDONLY);
    dup2(script, STDIN_FILENO);
    close(script);
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    frontEnd.run(delegate);
    const auto printed = linesOfTheFrontEnd(Kest::Test::capturedOutput());
    EXPECT_EQ(Kest::Test::capturedErrors(),
              "\"Solo Mode\" is a submenu: open it, or choose one of its items\n"
              "\"Clear History\" is greyed\n"
              "no item \"?[2J\" in the menu\n"
              "no item \"Mono\" in Speaker Configuration\n"
              "no item \"Latency Compensation\" in the menu\n"
              "\"DAW Link Control\" is not a submenu\n"
              "unknown command \"frobnicate\"; \"help\" lists what there is\n"
              "a line of more than 4096 bytes is no command\n");
    EXPECT_THAT(printed, testing::HasSubstr(
                             "\nchanged Solo Mode > Latch: off\nchanged Solo Mode > Exclusive (XOR): on\n"
                             "Monitoring Facility\n  ( ) Ann? > ex\n  (x) Standard-Surround (not available)\n"
                             "Kest Settings\n  Solo Mode\n    ( ) Latch\n    (x) Exclusive (XOR)\n"));
}

} // namespace
