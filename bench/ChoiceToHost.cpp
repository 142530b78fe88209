// A click on "Exclusive (XOR)" and a request for "Latch" by turns, and the plainest way to store as much and
// to reach the host.
#include "backend/SystemPaths.h"
#include "bench/BusBench.h"
#include "bench/MenuReader.h"
#include "bench/Samples.h"
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

constexpr std::chrono::milliseconds kRest{20}; // for what the agent does after the host has it

void click(const Watcher& watcher, int id)
{
    sd_bus_call_method_async(watcher.bus(), nullptr, watcher.item().c_str(), kMenuPath, kMenuInterface,
                             "Event", nullptr, nullptr, "isvu", id, "clicked", "i", 0, 0);
    sd_bus_flush(watcher.bus());
}

double waitForHost(const float& soloMode, float wanted, Clock::time_point begin)
{
    while (LIPC::loadShared(soloMode) != wanted) {
        if (Clock::now() - begin > std::chrono::seconds(10))
            throw std::runtime_error("a choice never came to the host");
        std::this_thread::yield();
    }
    return milliseconds(Clock::now() - begin);
}

double attachOnce()
{
    const auto begin = Clock::now();
    const Session session(LIPC::kSessionSegment);
    if (session.contents() == nullptr)
        throw std::runtime_error("no host");
    return milliseconds(Clock::now() - begin);
}

// To a file beside it, with or without waiting for the disk, and then into its place.
double saveOnce(const std::string& path, std::size_t bytes, bool flushes)
{
    const std::string text(bytes, 'x');
    const auto temporary = path + ".new";
    const auto begin = Clock::now();
    const int file = open(temporary.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    const bool isSaved = write(file, text.data(), bytes) == static_cast<ssize_t>(bytes) &&
                         (!flushes || fsync(file) == 0) && close(file) == 0 &&
                         std::rename(temporary.c_str(), path.c_str()) == 0;
    if (!isSaved)
        throw std::runtime_error("cannot save beside the settings");
    return milliseconds(Clock::now() - begin);
}

void request(Control::Client& client, const std::string& path)
{
    client.send(R"({"command":"choose","path":")" + path + "\"}");
}

void takeLine(Control::Client& client)
{
    std::string line;
    if (client.receive(line, Clock::now() + std::chrono::seconds(10)) != Control::Client::Received::line)
        throw std::runtime_error("the control socket does not answer");
}

struct Measured {
    Samples choices;
    Samples requests; // the same by the control socket
    Samples calls;    // a question to the agent and its answer: the bus's part of a choice
    Samples attachments;
    Samples saves;
    Samples unflushedSaves;
};

double callOnce(const Watcher& watcher)
{
    const auto begin = Clock::now();
    sd_bus_call_method(watcher.bus(), watcher.item().c_str(), kMenuPath, "org.freedesktop.DBus.Peer", "Ping",
                       nullptr, nullptr, "");
    return milliseconds(Clock::now() - begin);
}

Measured measure(const Watcher& watcher, const float& soloMode, int choices)
{
    const auto menu = readMenu(watcher.bus(), watcher.item());
    const int exclusive = idOf(menu, "Exclusive (XOR)");
    auto client = Control::Client::connect(Control::socketFolders({}));
    if (!client)
        throw std::runtime_error("no control socket");
    takeLine(*client); // the greeting
    const auto settings = Settings::SystemPaths().settingsFile();
    const auto path = settings + ".bench";
    Measured measured;
    for (int i = 1; i <= choices; ++i) {
        auto begin = Clock::now();
        click(watcher, exclusive);
        measured.choices.push_back(waitForHost(soloMode, 1, begin));
        watcher.waitFor([] { return false; }, kRest);
        saveOnce(path, std::filesystem::file_size(settings), true); // or it would wait for the click's writes
        begin = Clock::now();
        request(*client, "Solo Mode > Latch");
        measured.requests.push_back(waitForHost(soloMode, 0, begin));
        takeLine(*client);
        watcher.waitFor([] { return false; }, kRest);
        measured.calls.push_back(callOnce(watcher));
        measured.attachments.push_back(attachOnce());
        const auto bytes = std::filesystem::file_size(settings);
        measured.saves.push_back(saveOnce(path, bytes, true));
        measured.unflushedSaves.push_back(saveOnce(path, bytes, false));
        saveOnce(path, bytes, true); // or the next choice would wait for what was left to be written
    }
    std::filesystem::remove(path);
    return measured;
}

} // namespace

int choiceToHost(int choices, const Command& agent)
{
    const Session session(LIPC::kSessionSegment);
    Watcher watcher;
    if (session.contents() == nullptr || watcher.start(agent) < 0)
        throw std::runtime_error("no host, or no agent");
    const auto* own = session.contents()->getClientEntry(LIPC::kSettingsClientName);
    if (own == nullptr)
        throw std::runtime_error("the host has no place for the agent");
    const auto measured = measure(watcher, own->params[Kest::Settings::setting("SoloMode").number], choices);
    print("choice_ms", median(measured.choices));
    print("request_ms", median(measured.requests));
    print("choice_p99_ms", quantile(measured.choices, 0.99));
    print("call_ms", median(measured.calls));
    print("attach_and_save_ms", median(measured.attachments) + median(measured.saves));
    print("attach_and_unflushed_save_ms", median(measured.attachments) + median(measured.unflushedSaves));
    return 0;
}

} // namespace Kest::Bench
