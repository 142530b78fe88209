// The real agent with AppKit's menu on a screen of its own, worked with the pointer.
#include "tests/support/Eventually.h"
#include "tests/system/World.h"

#include <csignal>
#include <memory>
#include <sstream>
#include <stdexcept>

namespace Kest::Test {
namespace {

class AppKitProgram : public World {
protected:
    void SetUp() override
    {
        World::SetUp();
        std::filesystem::create_directories(std::string(kFacilities) + "/Studio B");
    }
    void start()
    {
        agent = std::make_unique<Process>(std::vector{program("kest-settings-appkit")});
        ASSERT_TRUE(agent->prints("fifo fd"));
        const auto bothAreShown = "test $(xdotool search --onlyvisible --name '^kest-settings' | wc -l) = 2";
        ASSERT_TRUE(eventually([&] { return std::system(bothAreShown) == 0; })) << "its menu and its icon";
    }
    static bool hand(const std::string& commands)
    {
        return std::system(("xdotool " + commands).c_str()) == 0;
    }
    /// The position of an item in the menu, counted from 1 with separators: that of its line in a terminal.
    static int rowOf(const std::string& title)
    {
        const auto file = home() / "menu";
        std::system(("echo quit | " + program("kest-settings-terminal") + " >" + file.string()).c_str());
        std::istringstream lines(readFile(file));
        int row = 0;
        for (std::string line; std::getline(lines, line);) {
            row += line.starts_with("  ") && !line.starts_with("   ") ? 1 : 0;
            if (line.ends_with(title))
                return row;
        }
        throw std::runtime_error("no item " + title);
    }
    /// Moves to a row of the menu, or of the submenu beside it.
    static std::string moveTo(int row, bool inSubmenu = false)
    {
        return "mousemove " + std::to_string(inSubmenu ? 240 : 60) + " " + std::to_string(12 + 20 * row) +
               " ";
    }
    static std::string press(int row) { return moveTo(row) + "mousedown 1 sleep 0.2 mouseup 1"; }
    /// A menu that is slow to appear misses the pointer, so that it may take more than one try.
    static bool chooses(const std::string& commands, const std::string& setting, const std::string& value)
    {
        return eventually([&] {
            hand(commands);
            return eventually([&] { return hasSetting(setting, value); }, std::chrono::seconds(3));
        });
    }

    std::unique_ptr<Process> agent;
};

TEST_F(AppKitProgram, TakesChoicesFromTheMenuAndFromASubmenuThatIsMadeUpAsItOpens)
{
    const int toggle = rowOf("DAW Link Control");
    const int facilities = rowOf("Monitoring Facility");
    start();
    EXPECT_TRUE(chooses(press(toggle), "DAWLinkControlSetting", "1"));
    std::filesystem::create_directories(std::string(kFacilities) + "/Annex");
    // The stale choice is the second of four: Annex, Standard-Surround, Studio B, Studio_A.
    EXPECT_TRUE(
        chooses(moveTo(facilities) + "mousedown 1 sleep 0.5 " + moveTo(3, true) + "sleep 0.2 mouseup 1",
                "Facility", "Studio B"));
}

TEST_F(AppKitProgram, EndsInOrderWhenItIsAskedTo)
{
    const int quit = rowOf("Quit Kest Settings");
    for (const int number : {SIGTERM, SIGINT, SIGHUP, 0}) {
        start();
        EXPECT_TRUE(std::filesystem::exists(kFifo));
        if (number != 0)
            agent->signal(number);
        else
            hand(press(quit));
        EXPECT_EQ(agent->exitStatus(), 0) << number;
        EXPECT_FALSE(std::filesystem::exists(kFifo));
    }
}

TEST_F(AppKitProgram, SaysInOneLineWhyItDoesNotStart)
{
    Process unseen({"/usr/bin/env", "-u", "DISPLAY", program("kest-settings-appkit"), "-psn_0_4711",
                    "-NSShowAllViews", "YES"}); // as macOS and Xcode start it
    EXPECT_TRUE(unseen.prints("No screen"));
    EXPECT_EQ(unseen.exitStatus(), 1);
}

} // namespace
} // namespace Kest::Test
