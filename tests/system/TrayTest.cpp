// The real tray agent on a session bus of its own, seen by a panel that this test plays.
#include "tests/system/Panel.h"
#include "tests/system/World.h"

#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <unistd.h>
#include <vector>

namespace Kest::Test {
namespace {

namespace fs = std::filesystem;

class Tray : public World {
protected:
    void startAgent()
    {
        agent = std::make_unique<Process>(std::vector<std::string>{program("kest-settings")});
    }
    void startBoth()
    {
        panel.start();
        startAgent();
        ASSERT_TRUE(panel.seesItem(1));
    }
    /// As an encoder.
    static void report(const std::string& lines)
    {
        int pipe = -1;
        EXPECT_TRUE(eventually([&] {
            pipe =
                open(kFifo, O_WRONLY | O_NONBLOCK | O_CLOEXEC); // nobody reads what a killed agent has left
            return pipe >= 0;
        }));
        fcntl(pipe, F_SETFL, 0);
        EXPECT_EQ(write(pipe, lines.data(), lines.size()), static_cast<ssize_t>(lines.size()));
        close(pipe);
    }

    BusDaemon daemon;
    Panel panel;
    std::unique_ptr<Process> agent;
};

TEST_F(Tray, RegistersWithEachNewPanelAndSaysWhenThereIsNone)
{
    startAgent();
    EXPECT_TRUE(agent->prints("No tray on this desktop yet"));
    panel.start();
    EXPECT_TRUE(panel.seesItem(1)) << "a panel that starts late";
    panel.stop();
    panel.start();
    EXPECT_TRUE(panel.seesItem(2)) << "a panel that was started again";
    EXPECT_EQ(panel.itemPath, "/org/ayatana/NotificationItem/kest_settings")
        << "GNOME loses items that are registered by name; Cinnamon opens the menu of such a path by left "
           "click";
    panel.unregister(panel.items[1] + "0@" + panel.itemPath);
    panel.unregister(panel.items[1] + "@" + panel.itemPath);
    EXPECT_TRUE(panel.seesItem(3)) << "a panel that has removed this item, and another one";
    for (std::size_t registrations = 4; registrations <= 30; ++registrations)
        panel.unregister(panel.items[1] + "@" + panel.itemPath);
    EXPECT_TRUE(panel.seesItem(11));
    panel.layout();
    EXPECT_EQ(panel.items.size(), 11U) << "a watcher that keeps removing the item is left alone";
    agent->signal(SIGTERM);
    EXPECT_EQ(agent->exitStatus(), 0);
}

TEST_F(Tray, AClickHasItsEffectAndOldAndNewStateAreTold)
{
    startBoth();
    const auto stereo = panel.at({"Speaker Configuration", "Stereo"}).id;
    const auto widest = panel.at({"Speaker Configuration", "KestMax 26.1"}).id;
    panel.updates.clear();
    panel.layouts.clear();
    panel.click({"Speaker Configuration", "Stereo"});
    ASSERT_TRUE(panel.waitFor([&] { return !panel.updates.empty(); }));
    ASSERT_EQ(panel.updates.size(), 1U);
    EXPECT_EQ(panel.updates[0][stereo]["toggle-state"], "1");
    EXPECT_EQ(panel.updates[0][widest]["toggle-state"], "0");
    EXPECT_TRUE(panel.layouts.empty());
    EXPECT_TRUE(hasSetting("PhysMonConfig", "1")) << settings();

    panel.click({"Speaker Configuration", "Stereo"}); // changes nothing, and is told again all the same
    ASSERT_TRUE(panel.waitFor([&] { return panel.updates.size() == 2; }));
    EXPECT_EQ(panel.updates[1][stereo]["toggle-state"], "1");
    panel.click({"Quit Kest Settings"});
    EXPECT_EQ(agent->exitStatus(), 0);
}

TEST_F(Tray, OpeningReportsChangesByASignalOnlyAndKeepsTheIds)
{
    startBoth();
    const auto facilities = panel.at({"Monitoring Facility"});
    std::set<int> ids;
    for (const auto& row : facilities.rows)
        ids.insert(row.id);
    for (int opening = 0; opening < 100; ++opening)
        ASSERT_FALSE(panel.aboutToShow(facilities.id));
    EXPECT_TRUE(panel.layouts.empty());

    fs::create_directories(fs::path(kFacilities) / "Studio_B");
    EXPECT_FALSE(panel.aboutToShow(0)) << "KDE ignores the next update of a menu for which this is true";
    ASSERT_TRUE(panel.waitFor([&] { return !panel.layouts.empty(); }));
    EXPECT_EQ(panel.layouts.front(), facilities.id) << "the menu's opening prepares its submenus";
    const auto now = panel.layout(facilities.id);
    ASSERT_EQ(now.rows.size(), 3U);
    EXPECT_EQ(now.rows[0].properties.at("label"), "Standard-Surround (not available)");
    EXPECT_EQ(now.rows[0].properties.at("disposition"), "alert");
    EXPECT_EQ(now.rows[2].properties.at("label"), "Studio__B");
    EXPECT_TRUE(ids.contains(now.rows[0].id) && ids.contains(now.rows[1].id) &&
                !ids.contains(now.rows[2].id));
}

TEST_F(Tray, APanelThatReadsLevelByLevelReadsEachSubmenuBeforeItOpens)
{
    startBoth();
    const auto submenusOf = [](const Panel::Row& menu) {
        std::vector<int> ids;
        for (const auto& row : menu.rows)
            if (row.properties.contains("children-display"))
                ids.push_back(row.id);
        return ids;
    };
    const auto announced = [&](int menu) {
        panel.layouts.clear();
        const auto submenus = submenusOf(panel.layout(menu, 1));
        panel.layout(); // its answer comes behind the signals
        panel.waitFor([] { return true; });
        return std::pair(submenus, panel.layouts);
    };
    const auto [submenus, first] = announced(0);
    EXPECT_GE(submenus.size(), 8U);
    EXPECT_EQ(first, submenus);
    EXPECT_TRUE(announced(0).second.empty()) << "announced once";

    const auto history = panel.at({"Encoding History"}).id;
    for (const std::string number : {"11", "12"}) {
        report("pid: " + number + " , path: /tmp/out/Film_Mix.wav\npid: " + number + " , P: 1\n");
        ASSERT_TRUE(panel.waitFor([&] { return std::ranges::count(panel.layouts, history) > 0; }));
        const auto [encodings, added] = announced(history);
        ASSERT_FALSE(encodings.empty());
        EXPECT_EQ(added, std::vector<int>{encodings.back()}) << "only the encoding that is new";
    }
    panel.stop();
    panel.start();
    ASSERT_TRUE(panel.seesItem(2));
    EXPECT_EQ(announced(0).second, submenus) << "to a panel that was started again";
}

TEST_F(Tray, APanelThatReadsTheWholeMenuGetsNoLayoutWhileAMenuIsOpen)
{
    startBoth();
    for (const std::string number : {"11", "12"})
        report("pid: " + number + " , path: /tmp/out/Film_Mix.wav\npid: " + number + " , P: 100\n");
    const auto rows = [&] { return panel.at({"Encoding History"}).rows; };
    ASSERT_TRUE(panel.waitFor([&] { return rows().size() == 4; }));
    const auto first = rows()[2].id;
    const auto history = panel.at({"Encoding History"}).id;
    const auto getsNoLayout = [&] {
        panel.layout(); // its answer comes after the signals
        panel.waitFor([] { return true; });
        return panel.layouts.empty();
    };
    const auto addWhileOpen = [&](const std::string& number) {
        panel.forgetSignals();
        const auto before = rows().size();
        report("pid: " + number + " , path: /tmp/out/Film_Mix.wav\npid: " + number + " , P: 1\n");
        EXPECT_TRUE(panel.waitFor([&] { return rows().size() == before + 1; }));
        EXPECT_TRUE(getsNoLayout()) << number;
    };
    const auto getsLayout = [&] { return panel.waitFor([&] { return !panel.layouts.empty(); }); };

    panel.send(0, "opened"); // MATE reports the whole menu only
    addWhileOpen("13");
    panel.send(rows()[0].id, "clicked");
    ASSERT_TRUE(panel.waitFor([&] { return !panel.updates.empty(); }));
    EXPECT_EQ(panel.updates[0][first]["visible"], "0") << "what is gone is not shown";
    EXPECT_TRUE(getsNoLayout());
    panel.send(0, "closed");
    ASSERT_TRUE(getsLayout());
    EXPECT_EQ(panel.layouts, std::vector<int>{history});

    panel.send(history, "opened"); // Xfce its submenus only
    addWhileOpen("14");
    panel.aboutToShow(history);
    EXPECT_TRUE(getsNoLayout());
    panel.aboutToShow(0);
    EXPECT_TRUE(getsLayout()) << "a panel that did not report the closing";

    panel.send(0, "opened");
    panel.send(rows()[2].id, "opened");
    panel.send(0, "closed");
    addWhileOpen("15");
    panel.send(rows()[2].id, "closed");
    EXPECT_TRUE(getsLayout()) << "the last menu was closed";
    panel.send(0, "opened");
    addWhileOpen("16");
    panel.stop();
    panel.start();
    EXPECT_TRUE(getsLayout()) << "a panel that was killed while its menu was open";

    panel.layout(0, 1); // as KDE
    panel.forgetSignals();
    panel.send(history, "opened");
    report("pid: 17 , path: /tmp/out/Film_Mix.wav\npid: 17 , P: 1\n");
    EXPECT_TRUE(getsLayout()) << "a panel that reads by level shows new rows in an open menu";
}

TEST_F(Tray, APanelThatScrollsItsSubmenusGetsNoSubmenuInside)
{
    startBoth();
    report("pid: 11 , path: /tmp/out/My_Long_Film_Mix.wav\npid: 11 , P: 7\n");
    ASSERT_TRUE(panel.waitFor([&] { return panel.at({"Encoding History"}).rows.size() == 3; }));
    const auto abort =
        panel.at({"Encoding History", "My__Long__Film  7%", "Abort and Delete Output Folder"}).id;
    const auto before = panel.layoutOfKinds();
    const auto row = Panel::find(before, {"Encoding History", "My__Long_Film  7%"});
    EXPECT_TRUE(row.rows.empty());
    EXPECT_FALSE(row.properties.contains("children-display"));
    panel.forgetSignals();
    report("pid: 11 , P: 8\n");
    ASSERT_TRUE(panel.waitFor([&] { return panel.updates.size() == 2; }));
    EXPECT_EQ(panel.updates[0].at(row.id).at("label"), "My__Long__Film  8%");
    EXPECT_EQ(panel.updates[1].at(row.id).at("label"), "My__Long_Film  8%") << "for this panel alone";
    panel.send(row.id, "clicked");
    ASSERT_TRUE(panel.waitFor([&] { return !panel.layouts.empty(); }));
    const auto after = panel.layoutOfKinds();
    EXPECT_EQ(after.rows.size(), before.rows.size() + 2);
    panel.startFileManager();
    panel.send(Panel::find(after, {"My__Long_Film: Show Output Folder"}).id, "clicked");
    EXPECT_TRUE(panel.waitFor([&] { return !panel.shownFolders.empty(); }));
    EXPECT_EQ(Panel::find(after, {"My__Long_Film: Abort and Delete Output Folder"}).id, abort);
}

TEST_F(Tray, AProgressMessageCostsOneUpdateOfOneLabel)
{
    startBoth();
    report("pid: 4711 , path: /tmp/out/Film_Mix.wav\npid: 4711 , P: 1\n");
    ASSERT_TRUE(panel.waitFor([&] { return !panel.layouts.empty(); }));
    const auto history = panel.at({"Encoding History"});
    EXPECT_EQ(panel.layouts, std::vector<int>{history.id});
    ASSERT_EQ(history.rows.size(), 3U);
    EXPECT_EQ(history.rows[2].properties.at("label"), "Film  1%");
    panel.updates.clear();
    panel.layouts.clear();
    for (int percentage = 2; percentage < 50; ++percentage) {
        report("pid: 4711 , P: " + std::to_string(percentage) + "\n");
        const auto count = static_cast<std::size_t>(percentage - 1);
        ASSERT_TRUE(panel.waitFor([&] { return panel.updates.size() == count; }));
        const std::map<std::string, std::string> wanted{
            {"label", "Film  " + std::to_string(percentage) + "%"}};
        EXPECT_EQ(panel.updates.back().at(history.rows[2].id), wanted);
        EXPECT_EQ(panel.updates.back().size(), 1U);
    }
    EXPECT_TRUE(panel.layouts.empty());
}

TEST_F(Tray, RevealAsksTheDesktopsFileManager)
{
    startBoth();
    panel.startFileManager();
    report("pid: 4711 , path: /tmp/Größe 1%/Film_Mix.wav\npid: 4711 , P: 1\n");
    ASSERT_TRUE(panel.waitFor([&] { return !panel.layouts.empty(); }));
    panel.click({"Encoding History", "Film  1%", "Show Output Folder"});
    EXPECT_TRUE(panel.waitFor([&] { return !panel.shownFolders.empty(); }));
    EXPECT_EQ(panel.shownFolders, std::vector<std::string>{"file:///tmp/Gr%C3%B6%C3%9Fe%201%25"});
}

TEST_F(Tray, ShowsTheLastStateOfEachOfManyEncodingsAtOnce)
{
    constexpr int kEncodings = 200;
    startBoth();
    const auto reportAll = [&](const std::function<std::string(int)>& what) {
        for (int encoding = 0; encoding < kEncodings; ++encoding) {
            report("pid: " + std::to_string(10000 + encoding) + " , " + what(encoding) + "\n");
        }
    };
    const auto label = [](int encoding) { return "Film " + std::to_string(1000 + encoding); };
    reportAll([&](int encoding) { return "path: /tmp/out/" + label(encoding) + ".wav"; });
    for (int percentage = 5; percentage <= 95; percentage += 5)
        reportAll([&](int) { return "P: " + std::to_string(percentage); });
    reportAll([](int encoding) { return encoding % 10 == 7 ? "ERROR: disk full" : "P: 100"; });
    std::multiset<std::string> wanted{"Clear History"};
    for (int encoding = 0; encoding < kEncodings; ++encoding)
        wanted.insert(label(encoding) + (encoding % 10 == 7 ? " - Failed" : "  100%"));

    std::multiset<std::string> shown;
    EXPECT_TRUE(panel.waitFor([&] {
        shown.clear();
        for (const auto& row : panel.at({"Encoding History"}).rows)
            if (const auto own = row.properties.find("label"); own != row.properties.end())
                shown.insert(own->second);
        return shown == wanted;
    })) << testing::PrintToString(shown);
}

TEST_F(Tray, AnswersCallsThatAreMalformedOrHuge)
{
    constexpr std::size_t kMany = 1'000'000;
    startBoth();
    const auto stereo = panel.at({"Speaker Configuration", "Stereo"}).id;
    EXPECT_GE(panel.callWithMany("GetGroupProperties", kMany, "i", stereo), 0);
    EXPECT_GE(panel.callWithMany("AboutToShowGroup", kMany, "i", stereo), 0);
    panel.updates.clear();
    EXPECT_GE(panel.callWithMany("EventGroup", kMany, "(isvu)", stereo, "clicked", "i", 0, 0), 0);
    EXPECT_TRUE(panel.waitFor([&] { return !panel.updates.empty(); }));
    EXPECT_EQ(panel.at({"Speaker Configuration", "Stereo"}).properties["toggle-state"], "1");
    EXPECT_EQ(panel.updates.size(), 1U) << "a million clicks are one";
}

TEST_F(Tray, EndsWithTheBus)
{
    startBoth();
    ASSERT_TRUE(agent->prints("fifo fd"));
    daemon.signal(SIGKILL);
    EXPECT_TRUE(agent->prints("The session bus has ended"));
    EXPECT_EQ(agent->exitStatus(), 1);
    EXPECT_FALSE(fs::exists(kFifo));
}

TEST_F(Tray, NeitherStartsNorEndsWithABusThatDoesNotAnswer)
{
    panel.start();
    daemon.signal(SIGSTOP);
    startAgent();
    ASSERT_TRUE(eventually([] { return settings().find("HdxAuxTrackDelay") != std::string::npos; }))
        << "saved at each start; lines of encoders are shown from now on";
    report("pid: 4711 , path: /tmp/out/Film_Mix.wav\npid: 4711 , P: 1\n");
    daemon.signal(SIGCONT);
    ASSERT_TRUE(panel.seesItem(1));
    EXPECT_TRUE(panel.waitFor([&] { return panel.at({"Encoding History"}).rows.size() == 3; }));

    daemon.signal(SIGSTOP);
    agent->signal(SIGTERM);
    EXPECT_EQ(agent->exitStatus(), 0);
    startAgent();
    ASSERT_TRUE(agent->prints("fifo fd"));
    agent->signal(SIGTERM);
    EXPECT_EQ(agent->exitStatus(), 0) << "started and ended while the bus was stopped";
    daemon.signal(SIGCONT);
}

} // namespace
} // namespace Kest::Test
