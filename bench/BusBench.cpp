// The parts of a measurement that need exact times; bench/measure does the rest.
// bus_bench signals COUNT sends signals with the time in nanoseconds, at random intervals of 4 to 12 ms.
// bus_bench choice COUNT ITEM ID prints five durations in ms COUNT times, for example "choice 1.5". "choice"
// is the time from a click on the menu item ID of a tray item until the host's segment contains the choice.
// "request" is the same from a request at the control socket. "attach" is an attachment of the segment.
// "save" and "unflushed" are writes of a file as long as the settings file, with and without fsync.
// bus_bench naive reads the host's session each second in the simplest way.
#include "backend/SystemPaths.h"
#include "bench/NaivePass.h"
#include "lipc/SettingsRecord.h"
#include "lipc/SharedNumber.h"
#include "lipc/ShmManaged.h"
#include "platform/control/Client.h"
#include "platform/control/SocketFolders.h"
#include "tables/Settings.h"

#include <chrono>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <random>
#include <string>
#include <systemd/sd-bus.h>
#include <thread>
#include <unistd.h>

namespace {

using namespace Kest;
using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using Session = LIPC::ShmManagedOpen<LIPC::SessionBuffer>;

constexpr auto kRest = 20ms; // for what the agent does after the host has the choice

sd_bus* connect()
{
    sd_bus* bus = nullptr;
    if (sd_bus_open_user(&bus) < 0)
        throw std::runtime_error("no session bus");
    return bus;
}

void sendPlainSignals(int count)
{
    auto* bus = connect();
    std::minstd_rand random(1);
    std::uniform_int_distribution<int> interval(4000, 12000);
    auto next = Clock::now();
    for (int i = 0; i < count; ++i) {
        std::this_thread::sleep_until(next += std::chrono::microseconds(interval(random)));
        const std::chrono::nanoseconds now = std::chrono::system_clock::now().time_since_epoch();
        sd_bus_emit_signal(bus, "/plain", "com.kestronics.bench.Plain", "Sent", "x",
                           std::int64_t{now.count()});
        sd_bus_flush(bus);
    }
    sd_bus_flush_close_unref(bus);
}

void print(const char* what, Clock::time_point begin)
{
    std::printf("%s %.4f\n", what, std::chrono::duration<double, std::milli>(Clock::now() - begin).count());
}

void awaitHost(const float& soloMode, float wanted, Clock::time_point begin)
{
    while (LIPC::loadShared(soloMode) != wanted) {
        if (Clock::now() - begin > 10s)
            throw std::runtime_error("a choice did not reach the host");
        std::this_thread::yield();
    }
}

// Writes a new file and renames it. `name` is null for a save that is not measured.
void save(const std::string& path, bool flushes, const char* name)
{
    const std::string text(std::filesystem::file_size(path), 'x');
    const auto saved = path + ".bench";
    const auto temporary = path + ".bench.new";
    const auto begin = Clock::now();
    const int file = open(temporary.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (write(file, text.data(), text.size()) != static_cast<ssize_t>(text.size()) ||
        (flushes && fsync(file) != 0) || close(file) != 0 ||
        std::rename(temporary.c_str(), saved.c_str()) != 0)
        throw std::runtime_error("cannot save beside the settings");
    if (name != nullptr)
        print(name, begin);
}

void takeLine(Control::Client& client)
{
    std::string line;
    if (client.receive(line, Clock::now() + 10s) != Control::Client::Received::line)
        throw std::runtime_error("the control socket does not answer");
}

void measureChoices(int count, const std::string& item, int id)
{
    const Session session(LIPC::kSessionSegment);
    auto* own = session.contents() == nullptr ? nullptr
                                              : session.contents()->getClientEntry(LIPC::kSettingsClientName);
    auto client = Control::Client::connect(Control::socketFolders({}));
    if (own == nullptr || !client)
        throw std::runtime_error("no host with an agent, or no control socket");
    const float& soloMode = own->params[Settings::setting("SoloMode").number];
    takeLine(*client); // the greeting
    auto* bus = connect();
    const auto path = Settings::SystemPaths().settingsFile();
    for (int i = 0; i < count; ++i) {
        auto begin = Clock::now();
        sd_bus_call_method_async(bus, nullptr, item.c_str(), "/MenuBar", "com.canonical.dbusmenu", "Event",
                                 nullptr, nullptr, "isvu", id, "clicked", "i", 0, 0);
        sd_bus_flush(bus);
        awaitHost(soloMode, 1, begin);
        print("choice", begin);
        std::this_thread::sleep_for(kRest);
        save(path, true, nullptr); // or the request would wait for the click's writes
        begin = Clock::now();
        client->send(R"({"command":"choose","path":"Solo Mode > Latch"})");
        awaitHost(soloMode, 0, begin);
        print("request", begin);
        takeLine(*client);
        std::this_thread::sleep_for(kRest);
        while (sd_bus_process(bus, nullptr) > 0) {
        }
        begin = Clock::now();
        static_cast<void>(Session(LIPC::kSessionSegment));
        print("attach", begin);
        save(path, true, "save");
        save(path, false, "unflushed");
        save(path, true, nullptr); // or the next click would wait for what is left to be written
    }
    sd_bus_flush_close_unref(bus);
}

} // namespace

int main(int argc, char** argv)
{
    const std::string mode = argc > 1 ? argv[1] : "";
    try {
        if (mode == "signals" && argc == 3)
            sendPlainSignals(std::stoi(argv[2]));
        else if (mode == "choice" && argc == 5)
            measureChoices(std::stoi(argv[2]), argv[3], std::stoi(argv[4]));
        else if (mode == "naive")
            for (;; std::this_thread::sleep_for(1s))
                Bench::naivePass(LIPC::kSessionSegment);
        else
            return 2;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "bus_bench %s: %s\n", mode.c_str(), failure.what());
        return 1;
    }
}
