#include "platform/control/ControlServer.h"

#include "platform/control/SocketFolders.h"
#include "tests/app/Agent.h"

#include <gtest/gtest.h>

#include <csignal>
#include <poll.h>
#include <sys/socket.h>

using namespace Kest;
using namespace Kest::Control;
using namespace Kest::Test;
using namespace std::chrono_literals;
namespace fs = std::filesystem;
using testing::HasSubstr;

namespace {

/// A client that never waits.
struct Peer {
    explicit Peer(const std::string& folder)
    {
        const auto address = *socketAddress(socketPath(folder));
        EXPECT_EQ(connect(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    }
    void send(const std::string& text) const { ::send(socket.get(), text.data(), text.size(), MSG_NOSIGNAL); }
    /// Adds what has arrived to `line`; true at the end of a line, or with "end" when the server has closed.
    bool receive(std::string& line) const
    {
        for (char byte = 0;; line += byte) {
            const auto count = recv(socket.get(), &byte, 1, MSG_DONTWAIT);
            if (count < 0 && errno == EAGAIN)
                return false;
            if (count <= 0)
                line = "end";
            if (count <= 0 || byte == '\n')
                return true;
        }
    }
    /// Returns whether the server has closed; what it had sent may be unread.
    bool isDropped() const
    {
        pollfd hangUp{socket.get(), 0, 0};
        return poll(&hangUp, 1, 0) > 0;
    }

    Settings::Descriptor socket{::socket(AF_UNIX, SOCK_STREAM, 0)};
};

class ControlTest : public testing::Test {
protected:
    void SetUp() override
    {
        std::signal(SIGPIPE, SIG_IGN); // as the agents' job queue does
        agent.start();
        serve();
    }
    void serve(const ServerLimits& limits = {})
    {
        agent.delegate.setObserver(nullptr);
        auto socket = ListeningSocket::open({folder});
        ASSERT_TRUE(socket);
        agent.delegate.setObserver(
            std::make_unique<ControlServer>(agent.delegate, agent.frontEnd, std::move(*socket), limits));
    }
    /// The next line, while the main thread runs its jobs.
    std::string line(const Peer& peer)
    {
        std::string text;
        EXPECT_TRUE(agent.pumpUntil([&] { return peer.receive(text); }));
        return text;
    }
    Peer connected()
    {
        Peer peer(folder);
        EXPECT_THAT(line(peer), HasSubstr("\"protocol\":" + std::to_string(kProtocol)));
        return peer;
    }
    std::string reply(const Peer& peer, const std::string& request)
    {
        peer.send(request + "\n");
        return line(peer);
    }

    Agent agent{{}, [](const App::AbortRequest&, const std::atomic<bool>&) {
                    return "refused: it is the home folder";
                }};
    const TemporaryFolder temporary;
    const std::string folder = temporary / "kest";
};

constexpr char kWatch[] = R"({"command":"watch"})";
constexpr char kDone[] = R"({"ok":true})";

std::string get(const std::string& path) { return R"({"command":"get","path":")" + path + "\"}"; }
std::string choice(const std::string& path, const std::string& more = "")
{
    return R"({"command":"choose","path":")" + path + "\"" + more + "}";
}

TEST_F(ControlTest, EachRequestHasItsReply)
{
    const std::pair<std::string, const char*> rows[] = {
        {choice("Solo Mode"), "is a submenu"},
        {get("Solo Mode\\u0000"), "no item"},
        {choice("Monitoring Facility > Studio"), "\"on\":true"}, // which is filled when it opens
        {"[]", "not a JSON object"},
        {get("\xff"), "not a JSON object"},
        {std::string(60'000, '['), "not a JSON object"},
        {R"({"command":"menu","n":1e999999})", "not a JSON object"},
        {R"({"command":{"command":"menu"}})", "must be \\\"menu\\\""},
        {R"({"command":"get"})", "path of an item"},
        {"\r\n{\"command\":\"menu\",\"more\":[[{}]]}\r", "\"ok\":true"},
        {std::string(kMaxRequestBytes + 1, 'x'), "longer than 65536 bytes"},
    };
    fs::create_directories(agent.system.paths.facilitiesFolder + "/Studio");
    const auto peer = connected();
    for (const auto& [request, wanted] : rows)
        EXPECT_THAT(reply(peer, request), HasSubstr(wanted)) << request.substr(0, 60);
    EXPECT_EQ(line(peer), "end");
    EXPECT_EQ(agent.stored("Facility"), "Studio");

    fs::remove_all(agent.system.paths.settingsFolder);
    writeFile(agent.system.paths.settingsFolder, "not a folder");
    EXPECT_THAT(reply(connected(), choice("Solo Mode > Exclusive (XOR)")), HasSubstr("not saved"));
}

TEST_F(ControlTest, RequestsSentAtOnceAreAnsweredInOrderAndAWatcherGetsEachChangeOnce)
{
    const auto peer = connected();
    peer.send(get("Solo Mode") + "\nx\n" + kWatch + "\n" + kWatch + "\n");
    shutdown(peer.socket.get(), SHUT_WR);
    EXPECT_THAT(line(peer), HasSubstr("\"item\""));
    EXPECT_THAT(line(peer), HasSubstr("\"error\""));
    EXPECT_EQ(line(peer), kDone);
    EXPECT_EQ(line(peer), kDone);
    for (const std::string item : {"Exclusive (XOR)", "Latch"}) {
        agent.choose("Solo Mode/" + item);
        EXPECT_THAT((std::vector{line(peer), line(peer)}),
                    testing::UnorderedElementsAre(HasSubstr(item + "\",\"what\":\"on\""),
                                                  HasSubstr("\"what\":\"off\"")));
    }
}

TEST_F(ControlTest, ClientsAreLimited)
{
    std::vector<Peer> peers;
    for (int i = 0; i < 16; ++i)
        peers.push_back(connected());
    EXPECT_THAT(line(Peer(folder)), HasSubstr("16 clients are connected"));
    peers.pop_back();
    EXPECT_TRUE(agent.pumpUntil([&] { return line(Peer(folder)).find("protocol") != std::string::npos; }));
}

TEST_F(ControlTest, WatcherThatLeavesTooMuchUnreadOrReadsNothingForTooLongIsDropped)
{
    for (const auto& limits : {ServerLimits{.maxUnsentBytes = 50'000, .maxStallTime = 1h},
                               ServerLimits{.maxUnsentBytes = 1'000'000'000, .maxStallTime = 300ms}}) {
        serve(limits);
        const auto watcher = connected();
        EXPECT_EQ(reply(watcher, kWatch), kDone);
        EXPECT_TRUE(agent.pumpUntil([&] {
            for (int i = 0; i < 100; ++i) {
                agent.at("Solo Mode/Latch").setState(i % 2 == 0);
                agent.open("Solo Mode"); // reports the change
            }
            return watcher.isDropped();
        }));
    }
}

TEST_F(ControlTest, SocketIsForTheUserAloneAndIsRemovedAtTheEnd)
{
    for (const auto other : {std::optional(geteuid() + 1), std::optional<uid_t>()}) {
        serve({.peerUser = [other](int) { return other; }});
        EXPECT_EQ(line(Peer(folder)), "end");
    }
    EXPECT_EQ(fs::status(socketPath(folder)).permissions(), fs::perms(0600));
    EXPECT_EQ(fs::status(folder).permissions(), fs::perms(0700));
    serve();
    const auto peer = connected();
    agent.delegate.setObserver(nullptr);
    EXPECT_EQ(line(peer), "end");
    EXPECT_FALSE(fs::exists(folder));
}

TEST_F(ControlTest, AbortNeedsAYesAndIsAnsweredWithItsFailure)
{
    const std::string abort = "Encoding History > Feature > Abort and Delete Output Folder";
    ASSERT_TRUE(agent.report(4711, "/out/Feature/Feature.wav"));
    EXPECT_THAT(reply(connected(), choice(abort)), HasSubstr("confirm with --yes"));
    EXPECT_THAT(reply(connected(), choice(abort, ",\"yes\":true")), HasSubstr("refused: it is the home"));
}

TEST(ListeningSocket, ReplacesNoOtherFileAndNoSocketInUseAndFollowsNoLink)
{
    const TemporaryFolder temporary;
    const auto folder = temporary / "kest";
    const auto elsewhere = temporary / "elsewhere";
    const auto path = socketPath(folder);
    if (const auto first = ListeningSocket::open({temporary / std::string(120, 'x'), folder}); true) {
        EXPECT_TRUE(first) << "a path that is too long is left out";
        captureErrors();
        EXPECT_FALSE(ListeningSocket::open({folder}));
        EXPECT_THAT(capturedErrors(), HasSubstr("socket: another agent uses it\n"));
        EXPECT_TRUE(fs::is_socket(path));
    }
    fs::create_directory(folder);
    writeFile(path, "precious");
    EXPECT_FALSE(ListeningSocket::open({folder}));
    EXPECT_EQ(readFile(path), "precious");
    fs::remove(path);
    fs::create_symlink(elsewhere, path);
    EXPECT_FALSE(ListeningSocket::open({folder}));
    EXPECT_TRUE(fs::is_symlink(path));

    fs::remove_all(folder);
    fs::create_directory(elsewhere);
    fs::create_directory_symlink(elsewhere, folder);
    EXPECT_FALSE(ListeningSocket::open({folder}));
    EXPECT_TRUE(fs::is_empty(elsewhere));
}

} // namespace
