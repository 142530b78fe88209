// The socket with real connections: what clients get, and what they cannot do.
#include "platform/control/ControlServer.h"

#include "app/ItemPath.h"
#include "platform/control/Client.h"
#include "platform/control/SocketFolders.h"
#include "tests/app/Agent.h"

#include <gtest/gtest.h>

#include <csignal>
#include <nlohmann/json.hpp>
#include <set>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/wait.h>

using namespace Kest;
using namespace Kest::Control;
using namespace std::chrono_literals;
using Json = nlohmann::json;
using Kest::Test::Agent;
using Kest::Test::eventually;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

/// A raw connection; the test's own thread reads it.
class Peer {
public:
    explicit Peer(const std::string& folder) : socket(::socket(AF_UNIX, SOCK_STREAM, 0))
    {
        const auto address = *socketAddress(socketPath(folder));
        if (connect(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
            socket = Settings::Descriptor();
        const timeval patience{10, 0};
        setsockopt(socket.get(), SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
    }
    bool isConnected() const { return static_cast<bool>(socket); }
    void send(const std::string& text) const { ::send(socket.get(), text.data(), text.size(), MSG_NOSIGNAL); }
    void endInput() const { shutdown(socket.get(), SHUT_WR); }
    /// The next line; "end" where the server has closed the connection.
    std::string line()
    {
        char byte = 0;
        std::string text;
        while (::read(socket.get(), &byte, 1) == 1)
            if (byte == '\n')
                return text;
            else
                text += byte;
        return "end";
    }
    Json object() { return Json::parse(line(), nullptr, false); }
    int descriptor() const { return socket.get(); }

private:
    Settings::Descriptor socket;
};

class ControlTest : public testing::Test {
protected:
    explicit ControlTest(App::AbortJobs::Abort abortOne = App::abortEncoder) : agent({}, std::move(abortOne))
    {
        std::signal(SIGPIPE, SIG_IGN); // as the agents' job queue does
    }
    void SetUp() override
    {
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
    Peer connected()
    {
        Peer peer(folder);
        EXPECT_EQ(peer.object()["protocol"], kProtocol);
        return peer;
    }
    /// The reply to one request on a connection, while the main thread runs its jobs.
    Json reply(Peer& peer, const std::string& request)
    {
        peer.send(request + "\n");
        Json answer;
        std::atomic<bool> isDone = false;
        std::thread reader([&] {
            answer = peer.object();
            isDone = true;
        });
        agent.pumpUntil([&] { return isDone.load(); });
        reader.join();
        return answer;
    }
    std::string error(Peer& peer, const std::string& request)
    {
        return reply(peer, request).value("error", "none");
    }

    Agent agent;
    const Kest::Test::TemporaryFolder temporary;
    const std::string folder = temporary / "kest";
};

std::string choice(const std::string& path, const std::string& more = "")
{
    return R"({"command":"choose","path":")" + path + "\"" + more + "}";
}

} // namespace

TEST_F(ControlTest, AChoiceIsStoredAndReachesTheHostBeforeTheReply)
{
    agent.delegate.setObserver(nullptr);
    auto& session = agent.place.startHost();
    serve();
    auto peer = connected();
    const auto answer = reply(peer, choice("solo mode > EXCLUSIVE (xor)"));
    EXPECT_EQ(answer["ok"], true);
    EXPECT_EQ(answer["item"]["path"], "Solo Mode > Exclusive (XOR)");
    EXPECT_EQ(answer["item"]["on"], true);
    EXPECT_EQ(agent.stored("SoloMode"), "1");
    EXPECT_EQ(session.floatAt(Kest::Test::RawSegment::slot(Kest::Test::TestPlace::kAgentSlot) + 144 +
                              sizeof(float) * Settings::setting("SoloMode").number),
              1.0F);
    EXPECT_EQ(reply(peer, R"({"command":"get","path":"Solo Mode"})")["item"]["items"][1]["on"], true);

    // A menu that is filled when it opens.
    std::filesystem::create_directories(agent.place.paths.facilitiesFolder + "/Studio");
    EXPECT_EQ(reply(peer, choice("Monitoring Facility > Studio"))["item"]["on"], true);
    EXPECT_EQ(agent.stored("Facility"), "Studio");
}

TEST_F(ControlTest, WhatIsNotPossibleHasAReason)
{
    auto peer = connected();
    const auto unknown = reply(peer, choice("Sterio"));
    EXPECT_EQ(unknown["error"], "no item \"Sterio\" in the menu");
    EXPECT_EQ(unknown["nearest"], "Speaker Configuration > Stereo");
    EXPECT_THAT(error(peer, choice("Solo Mode")), HasSubstr("is a submenu"));
    EXPECT_THAT(error(peer, choice("Encoding History > Clear History")), HasSubstr("is greyed"));
    EXPECT_THAT(error(peer, choice("Solo Mode\\u0000")), HasSubstr("no item"));
    std::filesystem::remove_all(agent.place.paths.settingsFolder);
    Kest::Test::writeFile(agent.place.paths.settingsFolder, "a file in place of the folder");
    EXPECT_THAT(error(peer, choice("Solo Mode > Exclusive (XOR)")), HasSubstr("not saved"));
}

TEST_F(ControlTest, AWatcherGetsEachChangeOnce)
{
    auto watcher = connected();
    auto other = connected();
    EXPECT_EQ(reply(watcher, R"({"command":"watch"})")["ok"], true);
    EXPECT_EQ(reply(watcher, R"({"command":"watch"})")["ok"], true);
    reply(other, choice("Solo Mode > Exclusive (XOR)"));
    std::set<std::string> events;
    for (int i = 0; i < 2; ++i) {
        const auto event = watcher.object();
        events.insert(event["path"].get<std::string>() + " " + event["what"].get<std::string>());
    }
    EXPECT_THAT(events, testing::ElementsAre("Solo Mode > Exclusive (XOR) on", "Solo Mode > Latch off"));
    EXPECT_EQ(reply(watcher, R"({"command":"get","path":"Solo Mode > Latch"})")["item"]["on"], false);
}

TEST_F(ControlTest, AnyTitleIsValidJson)
{
    const std::string title = "\"Studio\\ \x01\xff\n \xc3\xa4";
    std::filesystem::create_directories(agent.place.paths.facilitiesFolder + "/" + title);
    auto peer = connected();
    const auto menu = reply(peer, R"({"command":"menu"})");
    ASSERT_TRUE(menu.is_object());
    std::string path;
    for (const auto& item : menu["items"])
        if (item.value("path", "") == "Monitoring Facility")
            path = item["items"][0]["path"];
    EXPECT_THAT(path, HasSubstr("\"Studio\\ ?"));
    EXPECT_EQ(reply(peer, Json{{"command", "get"}, {"path", path}}.dump())["item"]["path"], path);
}

TEST_F(ControlTest, MalformedRequestsGetAnErrorEach)
{
    auto peer = connected();
    const std::string deep(60'000, '[');
    for (const std::string request :
         {"menu", "[]", "null", "{\"command\":7}", "{\"command\":\"none\"}", "{\"command\":\"get\"}",
          "{\"command\":\"get\",\"path\":\"\\ud800\"}", "{\"command\":\"get\",\"path\":\"\xff\"}",
          "{\"command\":{\"command\":\"menu\"}}", deep.c_str()})
        EXPECT_EQ(reply(peer, request)["ok"], false) << request.substr(0, 60);
    EXPECT_EQ(reply(peer, R"({"command":"menu","more":[[{}]],"n":1e999999})")["ok"], false);
    EXPECT_EQ(reply(peer, "\r\n"
                          R"({"command":"menu","more":[[{}]]})"
                          "\r")["ok"],
              true);

    peer.send(std::string(kMaxRequestBytes + 1, 'x'));
    EXPECT_THAT(peer.line(), HasSubstr("at most 65536 bytes"));
    EXPECT_EQ(peer.line(), "end");
}

TEST_F(ControlTest, RequestsSentAtOnceAreAnsweredInOrderAlsoAfterTheInputHasEnded)
{
    auto peer = connected();
    peer.send("{\"command\":\"get\",\"path\":\"Solo Mode\"}\nx\n{\"command\":\"watch\"}\n");
    peer.endInput();
    std::atomic<int> lines = 0;
    std::vector<Json> answers;
    std::thread reader([&] {
        for (; lines < 4; ++lines)
            answers.push_back(peer.object());
    });
    agent.pumpUntil([&] { return lines == 3; });
    agent.choose("Solo Mode/Exclusive (XOR)");
    reader.join();
    EXPECT_TRUE(answers[0].contains("item"));
    EXPECT_TRUE(answers[1].contains("error"));
    EXPECT_EQ(answers[2].dump(), R"({"ok":true})");
    EXPECT_TRUE(answers[3].contains("event"));
}

TEST_F(ControlTest, ClientsAreLimited)
{
    std::vector<Peer> peers;
    for (int i = 0; i < 16; ++i)
        peers.push_back(connected());
    EXPECT_THAT(Peer(folder).line(), HasSubstr("16 clients are connected"));
    EXPECT_EQ(reply(peers[7], R"({"command":"get","path":"Solo Mode"})")["ok"], true);
    peers.pop_back();
    EXPECT_TRUE(eventually([&] { return Peer(folder).object().contains("protocol"); }));
}

TEST_F(ControlTest, AClientThatDoesNotReadIsDropped)
{
    serve({.unreadBytes = 50'000, .unreadTime = 300ms, .peerUser = Control::peerUser});
    auto watcher = connected();
    const int small = 4096;
    setsockopt(watcher.descriptor(), SOL_SOCKET, SO_RCVBUF, &small, sizeof small);
    EXPECT_EQ(reply(watcher, R"({"command":"watch"})")["ok"], true);
    auto& item = agent.at("Solo Mode/Latch");
    for (int i = 0; i < 20'000; ++i) {
        item.setState(i % 2 == 0);
        agent.open("Solo Mode");
    }
    std::string last;
    int lines = 0;
    for (; (last = watcher.line()) != "end"; ++lines) {
    }
    EXPECT_LT(lines, 19'000);

    // One that asks for much and reads nothing is dropped by time.
    auto asking = connected();
    setsockopt(asking.descriptor(), SOL_SOCKET, SO_RCVBUF, &small, sizeof small);
    std::string requests;
    for (int i = 0; i < 1000; ++i)
        requests += "{\"command\":\"menu\"}\n";
    asking.send(requests);
    const auto begin = std::chrono::steady_clock::now();
    agent.pumpUntil([&] { return std::chrono::steady_clock::now() - begin > 1s; });
    for (lines = 0; asking.line() != "end"; ++lines) {
    }
    EXPECT_LT(lines, 900);
}

TEST_F(ControlTest, AnotherUserIsDisconnectedWithoutAWord)
{
    serve({.peerUser = [](int) { return geteuid() + 1; }});
    EXPECT_EQ(Peer(folder).line(), "end");
    serve({.peerUser = [](int) -> std::optional<uid_t> { return std::nullopt; }});
    EXPECT_EQ(Peer(folder).line(), "end");
}

TEST_F(ControlTest, TheSocketIsForTheUserAloneAndEndsWithTheServer)
{
    struct stat status {};
    ASSERT_EQ(lstat(socketPath(folder).c_str(), &status), 0);
    EXPECT_EQ(status.st_mode, S_IFSOCK | 0600U);
    ASSERT_EQ(lstat(folder.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode, S_IFDIR | 0700U);
    auto peer = connected();
    agent.delegate.setObserver(nullptr);
    EXPECT_EQ(peer.line(), "end");
    EXPECT_FALSE(std::filesystem::exists(socketPath(folder)));
}

TEST(ListeningSocket, ReplacesOnlyASocketThatNobodyAnswers)
{
    const Kest::Test::TemporaryFolder temporary;
    const auto folder = temporary / "kest";
    const auto path = socketPath(folder);
    if (const auto child = fork(); child == 0) {
        auto left = ListeningSocket::open({folder});
        _exit(left ? 0 : 1); // as when it is killed: the destructor does not run
    } else {
        int status = -1;
        waitpid(child, &status, 0);
        ASSERT_EQ(status, 0);
    }
    ASSERT_TRUE(std::filesystem::is_socket(path));
    {
        const auto replaced = ListeningSocket::open({folder});
        EXPECT_TRUE(replaced);
        Kest::Test::captureErrors();
        EXPECT_FALSE(ListeningSocket::open({folder})); // somebody listens
        EXPECT_THAT(Kest::Test::capturedErrors(), HasSubstr("socket: another agent has it\n"));
        EXPECT_TRUE(std::filesystem::is_socket(path));
    }

    std::filesystem::create_directory(folder);
    Kest::Test::writeFile(path, "precious");
    EXPECT_FALSE(ListeningSocket::open({folder}));
    EXPECT_EQ(Kest::Test::readFile(path), "precious");
    std::filesystem::remove(path);
    std::filesystem::create_symlink(temporary / "elsewhere", path);
    EXPECT_FALSE(ListeningSocket::open({folder}));
    EXPECT_TRUE(std::filesystem::is_symlink(path));

    std::filesystem::remove_all(folder);
    std::filesystem::create_directory(temporary / "elsewhere");
    std::filesystem::create_directory_symlink(temporary / "elsewhere", folder);
    EXPECT_FALSE(ListeningSocket::open({folder}));
    EXPECT_THAT(Kest::Test::readFile(temporary / "elsewhere/socket"), IsEmpty());
}

TEST(ListeningSocket, APathThatIsTooLongIsLeftOut)
{
    const Kest::Test::TemporaryFolder temporary;
    const auto tooLong = temporary / std::string(120, 'x');
    EXPECT_TRUE(ListeningSocket::open({tooLong, temporary / "short"}));
    EXPECT_FALSE(ListeningSocket::open({tooLong}));
}

namespace {

/// With an abort that ends when the test lets it.
class ControlAbortTest : public ControlTest {
protected:
    ControlAbortTest()
        : ControlTest([this](const App::AbortOrder&, const std::atomic<bool>&) {
              eventually([this] { return mayEnd.load(); });
              return failure;
          })
    {}
    std::atomic<bool> mayEnd = false;
    std::string failure;
};

constexpr char kAbort[] = "Encoding History > Feature > Abort and Delete Output Folder";

} // namespace

TEST_F(ControlAbortTest, AnAbortNeedsAYesAndIsAnsweredWhenItHasEnded)
{
    ASSERT_TRUE(agent.report(4711, "/out/Feature/Feature.wav"));
    auto peer = connected();
    EXPECT_THAT(error(peer, choice(kAbort)), HasSubstr("confirm with --yes"));
    failure = "refused: it is the home folder";
    peer.send(choice(kAbort, ",\"yes\":true") + "\n");
    ASSERT_TRUE(agent.pumpUntil([&] {
        const auto* row = agent.entry(4711);
        return !row->submenu()->itemArray().back()->properties().enabled;
    }));
    auto other = connected();
    EXPECT_THAT(error(other, choice(kAbort, ",\"yes\":true")), HasSubstr("is greyed"));
    char byte = 0;
    EXPECT_LT(recv(peer.descriptor(), &byte, 1, MSG_DONTWAIT), 0) << "a reply before its end";
    mayEnd = true;
    EXPECT_EQ(reply(peer, "").value("error", ""), failure);
    failure.clear();
    EXPECT_EQ(reply(peer, choice(kAbort, ",\"yes\":true"))["ok"], true);
    EXPECT_EQ(agent.entry(4711), nullptr);
}
