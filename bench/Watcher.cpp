#include "bench/BusBench.h"

#include <csignal>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <spawn.h>
#include <stdexcept>
#include <sys/wait.h>

extern char** environ; // NOLINT(readability-redundant-declaration)

namespace Kest::Bench {
namespace {

constexpr char kWatcher[] = "org.kde.StatusNotifierWatcher";
constexpr char kMenu[] = "com.canonical.dbusmenu";

struct Child {
    Clock::time_point started;
    pid_t pid = -1;
    bool hasItem = false;
    // The watcher's properties, which sd-bus reads at their offsets.
    int isHostRegistered = 1;
    char** items = nullptr;
    int protocol = 0;
};

int acceptHost(sd_bus_message* call, void*, sd_bus_error*) { return sd_bus_reply_method_return(call, ""); }

int acceptItem(sd_bus_message* call, void* child, sd_bus_error*)
{
    auto& watched = *static_cast<Child*>(child);
    const auto time = milliseconds(Clock::now() - watched.started);
    watched.hasItem = true;
    const char* name = nullptr;
    sd_bus_message_read(call, "s", &name);
    std::printf("item %.4f %s %d\n", time, name[0] == '/' ? sd_bus_message_get_sender(call) : name,
                watched.pid);
    return sd_bus_reply_method_return(call, "");
}

// The texts in the "a(ia{sv})" of an ItemsPropertiesUpdated.
void printLabels(sd_bus_message* signal, long long time)
{
    sd_bus_message_enter_container(signal, 'a', "(ia{sv})");
    while (sd_bus_message_enter_container(signal, 'r', "ia{sv}") > 0) {
        sd_bus_message_skip(signal, "i");
        sd_bus_message_enter_container(signal, 'a', "{sv}");
        while (sd_bus_message_enter_container(signal, 'e', "sv") > 0) {
            const char* name = nullptr;
            const char* text = nullptr;
            sd_bus_message_read(signal, "s", &name);
            if (std::strcmp(name, "label") == 0 && sd_bus_message_read(signal, "v", "s", &text) > 0)
                std::printf("label %lld %s\n", time, text);
            else
                sd_bus_message_skip(signal, "v");
            sd_bus_message_exit_container(signal);
        }
        sd_bus_message_exit_container(signal);
        sd_bus_message_exit_container(signal);
    }
}

int onSignal(sd_bus_message* signal, void*, sd_bus_error*)
{
    const long long time = Clock::now().time_since_epoch().count();
    std::int64_t sent = 0;
    if (sd_bus_message_is_signal(signal, kPlain, "Sent") > 0 && sd_bus_message_read(signal, "x", &sent) > 0) {
        std::printf("plain %lld %lld\n", time, static_cast<long long>(sent));
        return 0;
    }
    if (sd_bus_message_is_signal(signal, kMenu, "ItemsPropertiesUpdated") > 0)
        printLabels(signal, time);
    std::printf("menu %lld\n", time);
    return 0;
}

const sd_bus_vtable kVtable[] = {
    SD_BUS_VTABLE_START(0),
    SD_BUS_METHOD("RegisterStatusNotifierItem", "s", "", acceptItem, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("RegisterStatusNotifierHost", "s", "", acceptHost, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_PROPERTY("IsStatusNotifierHostRegistered", "b", nullptr, offsetof(Child, isHostRegistered), 0),
    SD_BUS_PROPERTY("RegisteredStatusNotifierItems", "as", nullptr, offsetof(Child, items), 0),
    SD_BUS_PROPERTY("ProtocolVersion", "i", nullptr, offsetof(Child, protocol), 0),
    SD_BUS_VTABLE_END,
};

void start(Child& child, std::vector<std::string> command)
{
    std::vector<char*> argv;
    for (auto& word : command)
        argv.push_back(word.data());
    argv.push_back(nullptr);
    posix_spawn_file_actions_t files;
    posix_spawn_file_actions_init(&files);
    for (const int descriptor : {0, 1, 2})
        posix_spawn_file_actions_addopen(&files, descriptor, "/dev/null", O_RDWR, 0);
    child.started = Clock::now();
    if (posix_spawnp(&child.pid, argv[0], &files, nullptr, argv.data(), environ) != 0)
        throw std::runtime_error("cannot start " + command[0]);
    posix_spawn_file_actions_destroy(&files);
}

} // namespace

int watch(const std::vector<std::string>& command)
{
    Child child;
    auto* bus = connect();
    if (sd_bus_add_object_vtable(bus, nullptr, "/StatusNotifierWatcher", kWatcher, kVtable, &child) < 0 ||
        sd_bus_request_name(bus, kWatcher, 0) < 0)
        throw std::runtime_error("another watcher is on the session bus");
    for (const auto* name : {kMenu, kPlain})
        sd_bus_add_match(bus, nullptr, ("type='signal',interface='" + std::string(name) + "'").c_str(),
                         onSignal, nullptr);
    start(child, command);
    while (waitpid(child.pid, nullptr, WNOHANG) == 0) {
        if (!child.hasItem && Clock::now() - child.started > std::chrono::seconds(10))
            kill(child.pid, SIGKILL);
        while (sd_bus_process(bus, nullptr) > 0) {
        }
        std::fflush(stdout);      // after the signals that have arrived, not between them
        sd_bus_wait(bus, 10'000); // microseconds; also to see the program's end
    }
    sd_bus_flush_close_unref(bus);
    return 0;
}

} // namespace Kest::Bench
