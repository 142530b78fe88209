// The real tray agent on a session bus of its own, seen by a panel that this test plays.
#include "tests/support/Eventually.h"
#include "tests/system/World.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <systemd/sd-bus.h>
#include <unistd.h>
#include <vector>

namespace Kest::Test {
namespace {

namespace fs = std::filesystem;

constexpr char kWatcher[] = "org.kde.StatusNotifierWatcher";
constexpr char kFileManager[] = "org.freedesktop.FileManager1";
constexpr char kMenu[] = "com.canonical.dbusmenu";
constexpr char kMenuPath[] = "/MenuBar";

/// A session bus daemon of one test.
class BusDaemon {
public:
    BusDaemon()
    {
        setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/tmp/bus", 1);
        EXPECT_TRUE(daemon.prints("unix:path"));
    }
    ~BusDaemon() { fs::remove("/tmp/bus"); }
    BusDaemon(const BusDaemon&) = delete;
    BusDaemon& operator=(const BusDaemon&) = delete;
    void signal(int number) const { daemon.signal(number); }

private:
    Process daemon{
        {"/usr/bin/dbus-daemon", "--session", "--nofork", "--print-address", "--address=unix:path=/tmp/bus"}};
};

/// The panel's side of the bus: the watcher with which items register, and a reader of their menu.
class Panel {
public:
    Panel()
    {
        EXPECT_GE(sd_bus_open_user(&bus), 0);
        static const sd_bus_vtable kVtable[] = {
            SD_BUS_VTABLE_START(0),
            SD_BUS_METHOD("RegisterStatusNotifierItem", "s", "", &Panel::onRegister,
                          SD_BUS_VTABLE_UNPRIVILEGED),
            SD_BUS_VTABLE_END,
        };
        sd_bus_add_object_vtable(bus, nullptr, "/StatusNotifierWatcher", kWatcher, kVtable, this);
        static const sd_bus_vtable kFileManagerVtable[] = {
            SD_BUS_VTABLE_START(0),
            SD_BUS_METHOD("ShowItems", "ass", "", &Panel::onShowItems, SD_BUS_VTABLE_UNPRIVILEGED),
            SD_BUS_VTABLE_END,
        };
        sd_bus_add_object_vtable(bus, nullptr, "/org/freedesktop/FileManager1", kFileManager,
                                 kFileManagerVtable, this);
        sd_bus_add_match(bus, nullptr, "type='signal',interface='com.canonical.dbusmenu'", &Panel::onSignal,
                         this);
    }
    ~Panel() { sd_bus_flush_close_unref(bus); }
    Panel(const Panel&) = delete;
    Panel& operator=(const Panel&) = delete;

    void start() { EXPECT_GE(sd_bus_request_name(bus, kWatcher, 0), 0); }
    void startFileManager() { EXPECT_GE(sd_bus_request_name(bus, kFileManager, 0), 0); }
    void stop() { EXPECT_GE(sd_bus_release_name(bus, kWatcher), 0); }

    bool waitFor(const std::function<bool()>& condition)
    {
        return eventually([&] {
            while (sd_bus_process(bus, nullptr) > 0) {
            }
            return condition();
        });
    }
    bool seesItem(std::size_t registrations)
    {
        return waitFor([&] { return items.size() == registrations; });
    }

    struct Row {
        int id = 0;
        std::map<std::string, std::string> properties; // numbers and flags as text
        std::vector<Row> rows;
    };
    Row layout(int parent = 0)
    {
        sd_bus_message* reply = nullptr;
        EXPECT_GE(call(&reply, "GetLayout", "iias", parent, -1, 0), 0);
        std::uint32_t revision = 0;
        sd_bus_message_read(reply, "u", &revision);
        auto row = readRow(reply);
        sd_bus_message_unref(reply);
        return row;
    }
    /// The item at a path of labels.
    Row at(const std::vector<std::string>& path)
    {
        auto row = layout();
        for (const auto& label : path) {
            const auto found = std::ranges::find_if(row.rows, [&](const Row& child) {
                const auto own = child.properties.find("label");
                return own != child.properties.end() && own->second == label;
            });
            if (found == row.rows.end()) {
                ADD_FAILURE() << "no item " << label;
                return {};
            }
            row = Row(*found);
        }
        return row;
    }
    void click(const std::vector<std::string>& path)
    {
        EXPECT_GE(call(nullptr, "Event", "isvu", at(path).id, "clicked", "i", 0, 0), 0);
    }
    bool aboutToShow(int id)
    {
        sd_bus_message* reply = nullptr;
        int needsUpdate = -1;
        EXPECT_GE(call(&reply, "AboutToShow", "i", id), 0);
        sd_bus_message_read(reply, "b", &needsUpdate);
        sd_bus_message_unref(reply);
        return needsUpdate == 1;
    }

    /// Calls a method of one array argument with `count` equal elements; returns what sd_bus_call does.
    int callWithMany(const char* method, std::size_t count, const char* element, const auto&... values)
    {
        sd_bus_message* made = nullptr;
        sd_bus_message_new_method_call(bus, &made, items.back().c_str(), kMenuPath, kMenu, method);
        const std::unique_ptr<sd_bus_message, decltype(&sd_bus_message_unref)> message(made,
                                                                                       sd_bus_message_unref);
        sd_bus_message_open_container(made, 'a', element);
        for (std::size_t i = 0; i < count; ++i)
            sd_bus_message_append(made, element, values...);
        sd_bus_message_close_container(made);
        if (method == std::string("GetGroupProperties"))
            sd_bus_message_append(made, "as", 0);
        return sd_bus_call(bus, made, 0, nullptr, nullptr);
    }

    std::vector<std::string> items;                                         // as registered
    std::vector<std::map<int, std::map<std::string, std::string>>> updates; // ItemsPropertiesUpdated
    std::vector<int> layouts;                                               // parents in LayoutUpdated
    std::vector<std::string> shownFolders;                                  // the file manager's

private:
    template <typename... Arguments>
    int call(sd_bus_message** reply, const char* method, const char* types, Arguments... arguments)
    {
        return sd_bus_call_method(bus, items.back().c_str(), kMenuPath, kMenu, method, nullptr, reply, types,
                                  arguments...);
    }
    static int onRegister(sd_bus_message* message, void* panel, sd_bus_error*)
    {
        const char* name = nullptr;
        sd_bus_message_read(message, "s", &name);
        static_cast<Panel*>(panel)->items.emplace_back(name);
        return sd_bus_reply_method_return(message, "");
    }
    static int onShowItems(sd_bus_message* message, void* panel, sd_bus_error*)
    {
        const char* address = nullptr;
        const char* startupId = nullptr;
        sd_bus_message_read(message, "ass", 1, &address, &startupId);
        static_cast<Panel*>(panel)->shownFolders.emplace_back(address);
        return sd_bus_reply_method_return(message, "");
    }
    static int onSignal(sd_bus_message* signal, void* panel, sd_bus_error*)
    {
        auto& self = *static_cast<Panel*>(panel);
        if (sd_bus_message_is_signal(signal, kMenu, "LayoutUpdated") > 0) {
            std::uint32_t revision = 0;
            int parent = -1;
            sd_bus_message_read(signal, "ui", &revision, &parent);
            self.layouts.push_back(parent);
        } else if (sd_bus_message_is_signal(signal, kMenu, "ItemsPropertiesUpdated") > 0) {
            auto& update = self.updates.emplace_back();
            sd_bus_message_enter_container(signal, 'a', "(ia{sv})");
            while (sd_bus_message_enter_container(signal, 'r', "ia{sv}") > 0) {
                int id = 0;
                sd_bus_message_read(signal, "i", &id);
                update[id] = readProperties(signal);
                sd_bus_message_exit_container(signal);
            }
        }
        return 0;
    }
    static std::map<std::string, std::string> readProperties(sd_bus_message* message)
    {
        std::map<std::string, std::string> properties;
        sd_bus_message_enter_container(message, 'a', "{sv}");
        while (sd_bus_message_enter_container(message, 'e', "sv") > 0) {
            const char* name = nullptr;
            const char* text = nullptr;
            int number = 0;
            sd_bus_message_read(message, "s", &name);
            const char* type = nullptr;
            sd_bus_message_peek_type(message, nullptr, &type);
            if (*type == 's')
                sd_bus_message_read(message, "v", "s", &text);
            else
                sd_bus_message_read(message, "v", type, &number);
            properties[name] = text != nullptr ? text : std::to_string(number);
            sd_bus_message_exit_container(message);
        }
        sd_bus_message_exit_container(message);
        return properties;
    }
    static Row readRow(sd_bus_message* message)
    {
        Row row;
        sd_bus_message_enter_container(message, 'r', "ia{sv}av");
        sd_bus_message_read(message, "i", &row.id);
        row.properties = readProperties(message);
        sd_bus_message_enter_container(message, 'a', "v");
        while (sd_bus_message_enter_container(message, 'v', "(ia{sv}av)") > 0) {
            row.rows.push_back(readRow(message));
            sd_bus_message_exit_container(message);
        }
        sd_bus_message_exit_container(message);
        sd_bus_message_exit_container(message);
        return row;
    }

    sd_bus* bus = nullptr;
};

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
    EXPECT_EQ(panel.items[0], "org.kde.StatusNotifierItem-" + std::to_string(agent->pid()) + "-1");
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

TEST_F(Tray, OpeningSaysWhetherItHasChangedAnythingAndKeepsTheIds)
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
    EXPECT_TRUE(panel.aboutToShow(facilities.id));
    ASSERT_TRUE(panel.waitFor([&] { return !panel.layouts.empty(); }));
    EXPECT_EQ(panel.layouts, std::vector<int>{facilities.id});
    const auto now = panel.layout(facilities.id);
    ASSERT_EQ(now.rows.size(), 3U);
    EXPECT_EQ(now.rows[0].properties.at("label"), "Standard-Surround (not available)");
    EXPECT_EQ(now.rows[0].properties.at("disposition"), "alert");
    EXPECT_EQ(now.rows[2].properties.at("label"), "Studio__B");
    EXPECT_TRUE(ids.contains(now.rows[0].id) && ids.contains(now.rows[1].id) &&
                !ids.contains(now.rows[2].id));
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
    ASSERT_TRUE(agent->prints("bus 0 : Main Bus")); // lines of encoders are shown from now on
    report("pid: 4711 , path: /tmp/out/Film_Mix.wav\npid: 4711 , P: 1\n");
    daemon.signal(SIGCONT);
    ASSERT_TRUE(panel.seesItem(1));
    EXPECT_TRUE(panel.waitFor([&] { return panel.at({"Encoding History"}).rows.size() == 3; }));

    daemon.signal(SIGSTOP);
    agent->signal(SIGTERM);
    EXPECT_EQ(agent->exitStatus(), 0);
    startAgent();
    ASSERT_TRUE(agent->prints("bus 0 : Main Bus"));
    agent->signal(SIGTERM);
    EXPECT_EQ(agent->exitStatus(), 0) << "started and ended while the bus was stopped";
    daemon.signal(SIGCONT);
}

} // namespace
} // namespace Kest::Test
