// A client that watches the control socket while an encoder writes; and what four clients cost.
#include "backend/SystemPaths.h"
#include "bench/BusBench.h"
#include "bench/Encoders.h"
#include "bench/ProcessFigures.h"
#include "bench/Samples.h"
#include "platform/control/Client.h"
#include "platform/control/SocketFolders.h"

#include <stdexcept>
#include <thread>

namespace Kest::Bench {
namespace {

using Control::Client;

constexpr int kClients = 4;
constexpr int kEncoder = 0;
constexpr std::chrono::milliseconds kPause{5};

std::string receive(Client& client)
{
    std::string line;
    if (client.receive(line, Clock::now() + std::chrono::seconds(10)) != Client::Received::line)
        throw std::runtime_error("the control socket does not answer");
    return line;
}

std::string ask(Client& client, const std::string& request)
{
    client.send(request);
    return receive(client);
}

Client connectWatching()
{
    auto client = Client::connect(Control::socketFolders({}));
    if (!client)
        throw std::runtime_error("no control socket");
    receive(*client); // the greeting
    ask(*client, R"({"command":"menu"})");
    ask(*client, R"({"command":"watch"})");
    return std::move(*client);
}

Samples lineToEvent(Client& client, int lines)
{
    const EncoderPipe pipe;
    Samples delays;
    for (int i = 0; i < lines; ++i) {
        const auto begin = Clock::now();
        if (!pipe.write(progressLine(kEncoder, i % 100)))
            throw std::runtime_error("a line was not taken");
        const auto percent = std::to_string(i % 100) + "%";
        while (receive(client).find(percent) == std::string::npos) {
        }
        delays.push_back(milliseconds(Clock::now() - begin));
        std::this_thread::sleep_for(kPause);
    }
    return delays;
}

} // namespace

int controlSocket(int lines, const Command& agent)
{
    Watcher watcher;
    if (watcher.start(agent) < 0)
        throw std::runtime_error("no agent");
    watcher.waitFor([] { return false; }, std::chrono::seconds(2));
    const auto before = memoryOf(watcher.pid()).privateMb;
    std::vector<Client> clients;
    while (clients.size() < kClients)
        clients.push_back(connectWatching());
    watcher.waitFor([] { return false; }, std::chrono::seconds(1));
    print("clients_kb", (memoryOf(watcher.pid()).privateMb - before) * 1024);
    const auto delays = lineToEvent(clients.front(), lines);
    print("event_median_ms", median(delays));
    print("event_p99_ms", quantile(delays, 0.99));
    return 0;
}

} // namespace Kest::Bench
