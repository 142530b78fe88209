// A session bus of one test, and the panel's side of it: a watcher, a file manager and a reader of the menu.
#pragma once

#include "tests/support/Eventually.h"
#include "tests/support/Process.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <systemd/sd-bus.h>
#include <vector>

namespace Kest::Test {

inline constexpr char kWatcher[] = "org.kde.StatusNotifierWatcher";
inline constexpr char kFileManager[] = "org.freedesktop.FileManager1";
inline constexpr char kMenu[] = "com.canonical.dbusmenu";
inline constexpr char kMenuPath[] = "/MenuBar";

/// A session bus daemon of one test.
class BusDaemon {
public:
    BusDaemon()
    {
        setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/tmp/bus", 1);
        EXPECT_TRUE(daemon.prints("unix:path"));
    }
    ~BusDaemon() { std::filesystem::remove("/tmp/bus"); }
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
    Row layout(int parent = 0, int depth = -1)
    {
        sd_bus_message* reply = nullptr;
        EXPECT_GE(call(&reply, "GetLayout", "iias", parent, depth, 0), 0);
        return readLayout(reply);
    }
    /// As GNOME's extension reads the menu.
    Row layoutOfKinds()
    {
        sd_bus_message* reply = nullptr;
        EXPECT_GE(call(&reply, "GetLayout", "iias", 0, -1, 2, "type", "children-display"), 0);
        return readLayout(reply);
    }
    /// Drops the signals so far.
    void forgetSignals()
    {
        layout(); // its answer comes after them
        waitFor([] { return true; });
        updates.clear();
        layouts.clear();
    }
    void send(int id, const char* event)
    {
        EXPECT_GE(call(nullptr, "Event", "isvu", id, event, "i", 0, 0), 0);
    }
    /// Emits the watcher's signal about an item.
    void unregister(const std::string& item)
    {
        EXPECT_GE(sd_bus_emit_signal(bus, "/StatusNotifierWatcher", kWatcher,
                                     "StatusNotifierItemUnregistered", "s", item.c_str()),
                  0);
    }
    /// The item at a path of labels.
    Row at(const std::vector<std::string>& path) { return find(layout(), path); }
    static Row find(Row row, const std::vector<std::string>& path)
    {
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
    void click(const std::vector<std::string>& path) { send(at(path).id, "clicked"); }
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
    /// Waits up to two minutes: a sanitizer on a busy machine takes half of one.
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
        return sd_bus_call(bus, made, kMaxAnswerTime, nullptr, nullptr);
    }

    std::vector<std::string> items;                                         // bus names, as registered
    std::string itemPath;                                                   // as registered last
    std::vector<std::map<int, std::map<std::string, std::string>>> updates; // ItemsPropertiesUpdated
    std::vector<int> layouts;                                               // parents in LayoutUpdated
    std::vector<std::string> shownFolders;                                  // the file manager's

private:
    static constexpr std::uint64_t kMaxAnswerTime = 120'000'000; // microseconds

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
        auto& self = *static_cast<Panel*>(panel);
        self.items.emplace_back(sd_bus_message_get_sender(message));
        self.itemPath = name;
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
    static Row readLayout(sd_bus_message* reply)
    {
        std::uint32_t revision = 0;
        sd_bus_message_read(reply, "u", &revision);
        auto row = readRow(reply);
        sd_bus_message_unref(reply);
        return row;
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

} // namespace Kest::Test
