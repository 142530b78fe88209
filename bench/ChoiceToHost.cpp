// A click on "Exclusive (XOR)" and a request for "Latch" by turns, and the simplest way to save as much and
// to reach the host.
#include "backend/SystemPaths.h"
#include "bench/BusBench.h"
#include "lipc/SessionBuffer.h"
#include "lipc/SettingsRecord.h"
#include "lipc/SharedNumber.h"
#include "lipc/ShmManaged.h"
#include "platform/control/Client.h"
#include "platform/control/SocketFolders.h"
#include "tables/Settings.h"

#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <stdexcept>
#include <thread>
#include <unistd.h>

namespace Kest::Bench {
namespace {

using Session = LIPC::ShmManagedOpen<LIPC::SessionBuffer>;

constexpr std::chrono::milliseconds kRest{20}; // for what the agent does after the host has the choice

void print(const char* what, Clock::time_point begin)
{
    std::printf("%s %.4f\n", what, milliseconds(Clock::now() - begin));
}

void awaitHost(const float& soloMode, float wanted, Clock::time_point begin)
{
    while (LIPC::loadShared(soloMode) != wanted) {
        if (Clock::now() - begin > std::chrono::seconds(10))
            throw std::runtime_error("a choice did not reach the host");
        std::this_thread::yield();
    }
}

// To a file beside it, with or without waiting for the disk, which is then renamed.
// Prints the time under `name`; null for a save that is not measured.
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

void attach()
{
    const auto begin = Clock::now();
    const Session session(LIPC::kSessionSegment);
    print("attach", begin);
}

void takeLine(Control::Client& client)
{
    std::string line;
    if (client.receive(line, Clock::now() + std::chrono::seconds(10)) != Control::Client::Received::line)
        throw std::runtime_error("the control socket does not answer");
}

} // namespace

int choiceToHost(int count, const std::string& item, int row)
{
    const Session session(LIPC::kSessionSegment);
    auto* own = session.contents() == nullptr ? nullptr
                                              : session.contents()->getClientEntry(LIPC::kSettingsClientName);
    auto client = Control::Client::connect(Control::socketFolders({}));
    if (own == nullptr || !client)
        throw std::runtime_error("no host with an agent, or no control socket");
    const float& soloMode = own->params[Kest::Settings::setting("SoloMode").number];
    takeLine(*client); // the greeting
    auto* bus = connect();
    const auto path = Settings::SystemPaths().settingsFile();
    for (int i = 0; i < count; ++i) {
        auto begin = Clock::now();
        sd_bus_call_method_async(bus, nullptr, item.c_str(), "/MenuBar", "com.canonical.dbusmenu", "Event",
                                 nullptr, nullptr, "isvu", row, "clicked", "i", 0, 0);
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
        attach();
        save(path, true, "save");
        save(path, false, "unflushed");
        save(path, true, nullptr); // or the next click would wait for what is left to be written
    }
    sd_bus_flush_close_unref(bus);
    return 0;
}

} // namespace Kest::Bench
