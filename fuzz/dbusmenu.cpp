// A panel that sends any bytes as the arguments of the menu's methods, and gives items any label. Each call
// is answered, and only items that are in the menu are opened.
#include "fuzz/Input.h"
#include "platform/statusnotifier/MenuExporter.h"
#include "tests/platform/terminal/SampleMenu.h"

#include <cstring>
#include <string_view>
#include <sys/socket.h>
#include <unistd.h>

namespace {

using namespace Kest;
using namespace Kest::StatusNotifier;
using Fuzz::require;

// With the types of their arguments.
constexpr const char* kMethods[][2] = {
    {"GetLayout", "iias"},     {"GetGroupProperties", "aias"}, {"GetProperty", "is"},     {"Event", "isvu"},
    {"EventGroup", "a(isvu)"}, {"AboutToShow", "i"},           {"AboutToShowGroup", "ai"}};

/// The agent's end of a bus without a daemon; the panel's end is a socket.
struct Connection {
    Connection()
    {
        int ends[2];
        sd_bus* bus = nullptr;
        require(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0, ends) == 0, "a socket");
        require(sd_bus_new(&bus) >= 0 && sd_bus_set_fd(bus, ends[0], ends[0]) >= 0, "a bus");
        agent.reset(bus);
        panel = ends[1];
        require(sd_bus_set_server(bus, 1, {}) >= 0 && sd_bus_set_anonymous(bus, 1) >= 0, "a server");
        require(sd_bus_start(bus) >= 0, "a bus that has started");
        send({"\0AUTH ANONYMOUS\r\nBEGIN\r\n", 24});
        exchange();
    }
    void send(const std::string& bytes) const
    {
        require(write(panel, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size()), "written");
    }
    /// Everything that was sent is handled. Returns what the agent has sent.
    std::string_view exchange() const
    {
        static char answer[1 << 20];
        while (sd_bus_process(agent.get(), nullptr) > 0)
            ;
        const auto size = read(panel, answer, sizeof answer);
        return {answer, static_cast<std::size_t>(size > 0 ? size : 0)};
    }

    BusPtr agent;
    int panel = -1;
};

void append(std::string& message, std::uint32_t number)
{
    message.append(reinterpret_cast<const char*>(&number), sizeof number);
}

void appendField(std::string& message, char code, char type, const std::string& value)
{
    message.resize((message.size() + 7) / 8 * 8);
    message += {code, 1, type, 0};
    if (type == 'g')
        message += static_cast<char>(value.size());
    else
        append(message, static_cast<std::uint32_t>(value.size()));
    message.append(value.c_str(), value.size() + 1);
}

std::string methodCall(const char* method, const char* types, const std::string& body)
{
    std::string message{'l', 1, 0, 1};
    append(message, static_cast<std::uint32_t>(body.size()));
    append(message, 1);
    append(message, 0); // the size of the fields, below
    appendField(message, 1, 'o', kMenuPath);
    appendField(message, 2, 's', "com.canonical.dbusmenu");
    appendField(message, 3, 's', method);
    appendField(message, 8, 'g', types);
    const auto fields = static_cast<std::uint32_t>(message.size() - 16);
    std::memcpy(message.data() + 12, &fields, sizeof fields);
    message.resize((message.size() + 7) / 8 * 8);
    return message + body;
}

struct Session {
    explicit Session(sd_bus* bus)
        : exporter(bus, {.menu = model,
                         .choose = [this](App::ItemId id) { change(id); },
                         .menuWillOpen =
                             [this](App::ItemId id) {
                                 require(id == App::kStatusMenuId || model.itemWithId(id) != nullptr,
                                         "what is opened is in the menu");
                                 change(id);
                             },
                         .post = [this](std::function<void()> job) { jobs.push_back(std::move(job)); }})
    {
        Test::fill(model.statusMenu(), model, Test::sampleMenu());
        exporter.menuChanged(model.takeChanges());
        require(exporter.failure() >= 0, "a menu");
    }
    // As the application does, sometimes: something is on, has another name, is added or removed.
    void change(App::ItemId id)
    {
        auto& buses = *model.statusMenu().itemArray()[2]->submenu();
        auto& first = *buses.itemArray().front();
        if (id % 3 == 0)
            buses.addItem(std::make_unique<App::MenuItem>(Test::bus(0, label).properties));
        else if (id % 3 == 1 && buses.numberOfItems() > 1)
            buses.removeItem(first);
        else
            first.setState(!first.properties().on);
        exporter.menuChanged(model.takeChanges());
    }

    App::MenuModel model;
    std::string label;
    std::vector<std::function<void()>> jobs;
    MenuExporter exporter;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const Connection connection;
    Fuzz::Input input(data, size);
    Session session(connection.agent.get());
    for (int calls = 0; calls < 8 && !input.isEmpty(); ++calls) {
        const auto& [method, types] = kMethods[input.below(std::size(kMethods))];
        session.label = input.text(static_cast<std::size_t>(input.below(16)));
        const auto body = input.text(input.byte());
        connection.exchange(); // signals
        connection.send(methodCall(method, types, body));
        require(!connection.exchange().empty(), "each call is answered");
        for (const auto& job : std::exchange(session.jobs, {}))
            job();
    }
    connection.exchange();
    connection.send(methodCall("GetLayout", "iias", {"\0\0\0\0\xFF\xFF\xFF\xFF\0\0\0\0", 12}));
    const auto answer = connection.exchange();
    require(answer.size() > 1 && answer[1] == SD_BUS_MESSAGE_METHOD_RETURN, "the menu can be read");
    return 0;
}
