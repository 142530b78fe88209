// A panel that calls the menu's methods with any arguments, while the menu changes. Each call is answered,
// and only items that are in the menu are asked for.
#include "fuzz/Input.h"
#include "platform/statusnotifier/MenuExporter.h"
#include "tests/platform/terminal/SampleMenu.h"

#include <sys/socket.h>

namespace {

using namespace Kest;
using namespace Kest::StatusNotifier;
using Fuzz::require;

constexpr char kInterface[] = "com.canonical.dbusmenu";

/// Both ends of a bus of their own, without a daemon between them.
struct Connection {
    Connection()
    {
        int ends[2];
        require(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0, ends) == 0, "a socket");
        agent = start(ends[0], true);
        panel = start(ends[1], false);
        while (sd_bus_is_ready(panel.get()) <= 0 || sd_bus_is_ready(agent.get()) <= 0)
            exchange();
    }
    static BusPtr start(int end, bool isServer)
    {
        sd_bus* bus = nullptr;
        sd_id128_t id{};
        require(sd_bus_new(&bus) >= 0 && sd_bus_set_fd(bus, end, end) >= 0, "a bus");
        if (isServer)
            sd_bus_set_server(bus, 1, id);
        sd_bus_set_anonymous(bus, 1);
        require(sd_bus_start(bus) >= 0, "a bus that has started");
        return BusPtr(bus);
    }
    /// Everything that is on its way arrives.
    void exchange()
    {
        for (int idle = 0; idle < 2;)
            idle = sd_bus_process(agent.get(), nullptr) + sd_bus_process(panel.get(), nullptr) > 0 ? 0
                                                                                                   : idle + 1;
    }

    BusPtr agent;
    BusPtr panel;
};

struct Session {
    explicit Session(sd_bus* bus) : exporter(bus, questions())
    {
        Test::fill(model.statusMenu(), model, Test::sampleMenu());
        exporter.menuChanged(model.takeChanges());
        require(exporter.failure() >= 0, "a menu");
    }

    MenuQuestions questions()
    {
        return {.menu = model,
                .choose = [this](App::ItemId id) { change(id); }, // it may have gone since it was clicked
                .menuWillOpen =
                    [this](App::ItemId id) {
                        require(id == App::kStatusMenuId || model.itemWithId(id) != nullptr,
                                "what is opened is in the menu");
                        change(id);
                    },
                .post = [this](std::function<void()> job) { jobs.push_back(std::move(job)); }};
    }
    // As the application does, sometimes: something is on, has another name, comes or goes.
    void change(App::ItemId id)
    {
        auto& buses = *model.statusMenu().itemArray()[2]->submenu();
        auto& first = *buses.itemArray().front();
        if (id % 3 == 0)
            buses.addItem(std::make_unique<App::MenuItem>(Test::bus(0, "Bus \xC3\xA9_&\x01").properties));
        else if (id % 3 == 1 && buses.numberOfItems() > 1)
            buses.removeItem(first);
        else
            first.setState(!first.properties().on);
        exporter.menuChanged(model.takeChanges());
    }
    void runJobs()
    {
        for (const auto& job : std::exchange(jobs, {}))
            job();
    }

    App::MenuModel model;
    std::vector<std::function<void()>> jobs;
    MenuExporter exporter;
};

// Mostly items that there are.
App::ItemId anyId(Fuzz::Input& input) { return input.below(4) == 0 ? input.number() : input.below(110); }

std::string anyName(Fuzz::Input& input)
{
    const char* const names[] = {"clicked", "opened",       "closed", "hovered",
                                 "label",   "toggle-state", "type",   ""};
    if (const int which = input.below(10); which < 8)
        return names[which];
    auto name = input.text(8);
    for (auto& c : name)
        c = static_cast<char>(c & 0x7F); // sd-bus itself lets nothing but UTF-8 pass
    return name.c_str();
}

void appendIds(sd_bus_message* call, Fuzz::Input& input)
{
    sd_bus_message_open_container(call, 'a', "i");
    for (int count = input.below(6); count > 0; --count)
        sd_bus_message_append(call, "i", anyId(input));
    sd_bus_message_close_container(call);
}

void appendEvent(sd_bus_message* call, Fuzz::Input& input)
{
    const auto id = anyId(input);
    const auto name = anyName(input);
    if (input.below(2) == 0)
        sd_bus_message_append(call, "isvu", id, name.c_str(), "s", name.c_str(), 0U);
    else
        sd_bus_message_append(call, "isvu", id, name.c_str(), "(ii)", id, id, 0U);
}

void appendArguments(sd_bus_message* call, int method, Fuzz::Input& input)
{
    switch (method) {
    case 0:
        sd_bus_message_append(call, "iias", anyId(input), input.below(5) - 1, 1, "label");
        return;
    case 1:
        appendIds(call, input);
        sd_bus_message_append(call, "as", 0);
        return;
    case 2:
        sd_bus_message_append(call, "is", anyId(input), anyName(input).c_str());
        return;
    case 3:
        return appendEvent(call, input);
    case 4:
        sd_bus_message_open_container(call, 'a', "(isvu)");
        for (int count = input.below(4); count > 0; --count) {
            sd_bus_message_open_container(call, 'r', "isvu");
            appendEvent(call, input);
            sd_bus_message_close_container(call);
        }
        sd_bus_message_close_container(call);
        return;
    case 5:
        sd_bus_message_append(call, "i", anyId(input));
        return;
    case 6:
        return appendIds(call, input);
    default: // the arguments of another method
        appendArguments(call, input.below(7), input);
    }
}

int countReply(sd_bus_message*, void* replies, sd_bus_error*)
{
    ++*static_cast<int*>(replies);
    return 1;
}

void callOnce(Connection& connection, Fuzz::Input& input)
{
    const char* const methods[] = {"GetLayout",  "GetGroupProperties", "GetProperty",      "Event",
                                   "EventGroup", "AboutToShow",        "AboutToShowGroup", "GetLayout"};
    const int method = input.below(8);
    sd_bus_message* made = nullptr;
    sd_bus_message_new_method_call(connection.panel.get(), &made, nullptr, kMenuPath, kInterface,
                                   methods[method == 7 ? input.below(7) : method]);
    const MessagePtr call(made);
    appendArguments(call.get(), method, input);
    int replies = 0;
    sd_bus_slot* made_slot = nullptr;
    require(sd_bus_call_async(connection.panel.get(), &made_slot, call.get(), countReply, &replies, 0) >= 0,
            "a call that is sent");
    const SlotPtr slot(made_slot);
    connection.exchange();
    require(replies == 1, "each call is answered");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static Connection connection;
    Fuzz::Input input(data, size);
    Session session(connection.agent.get());
    for (int calls = 0; calls < 8 && !input.isEmpty(); ++calls) {
        callOnce(connection, input);
        session.runJobs();
    }
    connection.exchange();
    return 0;
}
