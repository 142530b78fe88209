// kest-settings-ctl: controls the running agent through its socket. --help lists its commands.
#include "backend/HomeFolder.h"
#include "platform/control/Client.h"
#include "platform/control/Request.h"
#include "platform/control/SocketFolders.h"
#include "tools/kest_settings_ctl/Options.h"
#include "tools/kest_settings_ctl/PlainText.h"

#include <cstdio>
#include <exception>
#include <nlohmann/json.hpp>

using namespace KestSettingsCtl;

namespace {

using Kest::Control::Client;
using Clock = std::chrono::steady_clock;

int fail(const std::string& reason)
{
    std::fprintf(stderr, "kest-settings-ctl: %s\n", reason.c_str());
    return 1;
}

bool print(const std::string& text)
{
    return std::fwrite(text.data(), 1, text.size(), stdout) == text.size() && std::fflush(stdout) == 0;
}

/// A connection to the agent, and its last error.
class Agent {
public:
    explicit Agent(int timeout)
        : seconds(timeout), deadline(Clock::now() + std::chrono::seconds(timeout)),
          client(Client::connect(Kest::Control::socketFolders({})))
    {}

    /// Returns the next object; nullopt, with `problem` set, if there is none.
    std::optional<Json> receive(Client::Deadline until)
    {
        switch (client->receive(line, until)) {
        case Client::Received::end:
            problem = "the agent has closed the connection";
            return std::nullopt;
        case Client::Received::timeout:
            problem = "no reply within " + std::to_string(seconds) + " seconds";
            return std::nullopt;
        case Client::Received::line:
            break;
        }
        auto object = Json::parse(line, nullptr, false);
        if (object.is_object())
            return object;
        problem = "the agent's reply is not a JSON object";
        return std::nullopt;
    }

    /// Returns the reply to a request; nullopt, with `problem` set, if there is none or it is an error.
    std::optional<Json> exchange(const Json& request)
    {
        if (!client) {
            problem = "no agent of this user is running";
            return std::nullopt;
        }
        const auto greeting = receive(deadline);
        if (!greeting)
            return std::nullopt;
        if (greeting->value("protocol", Json()) != Kest::Control::kProtocol) {
            problem = greeting->contains("error") ? errorText(*greeting)
                                                  : "the agent uses another version of the protocol";
            return std::nullopt;
        }
        if (!client->send(request.dump(-1, ' ', false, Json::error_handler_t::replace))) {
            problem = "the agent has closed the connection";
            return std::nullopt;
        }
        auto reply = receive(deadline);
        if (reply && reply->value("ok", Json()) != true) {
            problem = errorText(*reply);
            return std::nullopt;
        }
        return reply;
    }

    std::string line;    // the last received line
    std::string problem; // the last error

private:
    const int seconds;
    const Clock::time_point deadline;
    std::optional<Client> client;
};

int watch(Agent& agent, bool json)
{
    while (const auto event = agent.receive(std::nullopt))
        if (event->contains("event") && !print(json ? agent.line + "\n" : eventText(*event)))
            return fail("cannot write the output");
    return fail(agent.problem);
}

std::string textOf(const Options& options, const Json& reply)
{
    if (options.paths)
        return pathsText(reply.value("items", Json::array()));
    if (options.command == "menu")
        return menuText(reply.value("items", Json::array()));
    return reply.contains("item") ? itemText(reply["item"]) : "done: " + options.path + "\n";
}

// Throws an exception of the JSON library for a reply of unexpected structure.
int run(const Options& options)
{
    Agent agent(options.timeout);
    Json request = {{"command", options.command}};
    if (!options.path.empty())
        request["path"] = options.path;
    if (options.yes)
        request["yes"] = true;
    const auto reply = agent.exchange(request);
    if (!reply)
        return fail(agent.problem);
    if (options.command == "watch")
        return watch(agent, options.json);
    return print(options.json ? agent.line + "\n" : textOf(options, *reply))
               ? 0
               : fail("cannot write the output");
}

} // namespace

int main(int argc, char** argv)
{
    int exitStatus = 0;
    const auto options = parseOptions(argc, argv, exitStatus);
    if (!options)
        return exitStatus;
    Kest::Settings::repairHome();
    try {
        return run(*options);
    } catch (const std::exception&) {
        return fail("the agent's reply has an unknown format");
    }
}
