#include "bench/Watcher.h"

#include <csignal>
#include <fcntl.h>
#include <spawn.h>
#include <stdexcept>
#include <sys/wait.h>

extern char** environ; // NOLINT(readability-redundant-declaration)

namespace Kest::Bench {
namespace {

constexpr char kWatcher[] = "org.kde.StatusNotifierWatcher";

int isThere(sd_bus*, const char*, const char*, const char*, sd_bus_message* reply, void*, sd_bus_error*)
{
    return sd_bus_message_append(reply, "b", 1);
}

int noItems(sd_bus*, const char*, const char*, const char*, sd_bus_message* reply, void*, sd_bus_error*)
{
    return sd_bus_message_append(reply, "as", 0);
}

int version(sd_bus*, const char*, const char*, const char*, sd_bus_message* reply, void*, sd_bus_error*)
{
    return sd_bus_message_append(reply, "i", 0);
}

int acceptHost(sd_bus_message* call, void*, sd_bus_error*) { return sd_bus_reply_method_return(call, ""); }

pid_t spawn(const std::vector<std::string>& command)
{
    auto words = command;
    std::vector<char*> argv;
    argv.reserve(words.size() + 1);
    for (auto& word : words)
        argv.push_back(word.data());
    argv.push_back(nullptr);
    posix_spawn_file_actions_t files;
    posix_spawn_file_actions_init(&files);
    for (const int descriptor : {0, 1, 2})
        posix_spawn_file_actions_addopen(&files, descriptor, "/dev/null", O_RDWR, 0);
    pid_t pid = -1;
    if (posix_spawnp(&pid, argv[0], &files, nullptr, argv.data(), environ) != 0)
        pid = -1;
    posix_spawn_file_actions_destroy(&files);
    return pid;
}

} // namespace

Watcher::Watcher()
{
    static const sd_bus_vtable kVtable[] = {
        SD_BUS_VTABLE_START(0),
        SD_BUS_METHOD("RegisterStatusNotifierItem", "s", "", &Watcher::onRegister,
                      SD_BUS_VTABLE_UNPRIVILEGED),
        SD_BUS_METHOD("RegisterStatusNotifierHost", "s", "", acceptHost, SD_BUS_VTABLE_UNPRIVILEGED),
        SD_BUS_PROPERTY("IsStatusNotifierHostRegistered", "b", isThere, 0, 0),
        SD_BUS_PROPERTY("RegisteredStatusNotifierItems", "as", noItems, 0, 0),
        SD_BUS_PROPERTY("ProtocolVersion", "i", version, 0, 0),
        SD_BUS_VTABLE_END,
    };
    if (sd_bus_open_user(&connection) < 0 ||
        sd_bus_add_object_vtable(connection, nullptr, "/StatusNotifierWatcher", kWatcher, kVtable, this) <
            0 ||
        sd_bus_request_name(connection, kWatcher, 0) < 0)
        throw std::runtime_error("no session bus without a watcher of its own");
}

Watcher::~Watcher()
{
    end();
    sd_bus_flush_close_unref(connection);
}

double Watcher::start(const std::vector<std::string>& command)
{
    itemName.clear();
    const auto begin = Clock::now();
    process = spawn(command);
    if (process > 0)
        waitFor([this] { return !itemName.empty(); }, std::chrono::seconds(10));
    return itemName.empty() ? -1 : milliseconds(registered - begin);
}

bool Watcher::waitFor(const std::function<bool()>& condition, Clock::duration atMost) const
{
    constexpr std::uint64_t kLookAgainAfterUs = 10'000; // conditions may hold without anything on the bus
    const auto end = Clock::now() + atMost;
    while (!condition()) {
        if (Clock::now() >= end)
            return false;
        if (sd_bus_process(connection, nullptr) == 0)
            sd_bus_wait(connection, kLookAgainAfterUs);
    }
    return true;
}

void Watcher::end()
{
    if (process <= 0)
        return;
    kill(process, SIGTERM);
    const auto hasEnded = [this] { return waitpid(process, nullptr, WNOHANG) != 0; };
    if (!waitFor(hasEnded, std::chrono::seconds(2))) {
        kill(process, SIGKILL);
        waitpid(process, nullptr, 0);
    }
    process = -1;
}

int Watcher::onRegister(sd_bus_message* message, void* watcher, sd_bus_error*)
{
    auto& self = *static_cast<Watcher*>(watcher);
    self.registered = Clock::now();
    const char* name = nullptr;
    sd_bus_message_read(message, "s", &name);
    self.itemName = name[0] == '/' ? sd_bus_message_get_sender(message) : name;
    return sd_bus_reply_method_return(message, "");
}

} // namespace Kest::Bench
