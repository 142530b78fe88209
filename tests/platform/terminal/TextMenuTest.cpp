// The menu in plain lines: a whole dialogue, with what the system tests leave out.
#include "app/ItemPath.h"
#include "platform/terminal/TextFrontEnd.h"
#include "tests/app/Agent.h"

namespace {

using namespace Kest::App;
using testing::HasSubstr;

TEST(ItemPath, FindsItemsOfOneTitleByTheirNumberOnly)
{
    MenuModel model;
    for (const char* title : {"Film", "Film", "Film #2", "Other"})
        model.statusMenu().addItem(std::make_unique<MenuItem>(ItemProperties{.title = title}));
    const auto menu = takeSnapshot(model);
    EXPECT_THAT(findByPath(menu, "Film").error, HasSubstr("several items \"Film\" in the menu: add #1"));
    EXPECT_EQ(findByPath(menu, "Film #1").item, &menu.items[0]);
    EXPECT_EQ(findByPath(menu, "Film #2").item, nullptr) << "of one or of the other";
    EXPECT_EQ(findByPath(menu, "Film #3").error, "no item \"Film #3\" in the menu");
}

TEST(TextFrontEnd, PrintsChangesAndWhatIsNoCommand)
{
    Kest::Test::TestPlace place;
    Kest::Test::FakeWorkspace workspace;
    Kest::Terminal::TextFrontEnd frontEnd;
    KestSettingsAppDelegate delegate(frontEnd, workspace, place.paths);
    delegate.awakeFromNib();
    std::filesystem::create_directories(place.paths.facilitiesFolder + "/Ann\x7F > ex");
    Kest::Test::writeFile(
        place.folder / "script",
        "choose Solo Mode > Exclusive (XOR)\r\nchoose \x1B[2J\n"
        "open Latency Compensation\nopen DAW Link Control\n" + // hidden, and no submenu
            std::string(8192, 'x') +
            "quit\nchoose Monitoring Facility > Ann? > ex\nopen Monitoring Facility\n  quit\nx\n");
    const int script = open((place.folder / "script").c_str(), O_RDONLY);
    dup2(script, STDIN_FILENO);
    close(script);
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    frontEnd.run(delegate);
    EXPECT_EQ(Kest::Test::capturedErrors(), "no item \"?[2J\" in the menu\n"
                                            "no item \"Latency Compensation\" in the menu\n"
                                            "\"DAW Link Control\" is not a submenu\n"
                                            "a line of more than 4096 bytes is no command\n");
    EXPECT_THAT(Kest::Test::capturedOutput(),
                HasSubstr("\nchanged Solo Mode > Latch: off\nchanged Solo Mode > Exclusive (XOR): on\n"
                          "Monitoring Facility\n  (x) Ann? > ex\n"));
}

} // namespace
