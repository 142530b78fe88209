#pragma once

#include "backend/Backend.h"
#include "tests/support/Captured.h"
#include "tests/support/Encoder.h"
#include "tests/support/TestPaths.h"

#include <gmock/gmock.h>

#include <csignal>
#include <mutex>

namespace Kest::Test {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using namespace std::chrono_literals;
using namespace std::string_literals;

class BackendTest : public testing::Test {
    void receive(int number, int type, const char* description)
    {
        std::vector<std::string> names;
        running->getKestBusNamesList(names); // queries are allowed in a callback
        const auto errors = -running->getEncodingStatus(type).errorCount;
        const std::lock_guard lock(mutex);
        messages.push_back(std::to_string(number) + " " + std::to_string(type) + " " +
                           (description == nullptr ? "null" : "'" + std::string(description) + "'") +
                           (errors == 0 ? "" : " (" + std::to_string(errors) + ")"));
    }

    std::mutex mutex;
    std::vector<std::string> messages;
    Settings::Backend* running = nullptr;

protected:
    BackendTest() { std::signal(SIGPIPE, SIG_IGN); }

    void start(std::chrono::nanoseconds period = 5ms)
    {
        backend.reset();
        backend = std::make_unique<Settings::Backend>(system.paths, period);
        running = backend.get();
        backend->messageContext = this;
        backend->hostStateCallback = [](void* context) { ++static_cast<BackendTest*>(context)->hostChanges; };
        backend->messageCallback = [](void* context, int number, int type, const char* description) {
            static_cast<BackendTest*>(context)->receive(number, type, description);
        };
    }
    /// Waits for at least `count` messages. Returns all messages since the last call, each as "number type
    /// 'description'", or "number type null". If a message is about an encoding with errors, the number of
    /// errors follows in brackets.
    std::vector<std::string> received(std::size_t count = 0)
    {
        const auto isComplete = [&] {
            const std::lock_guard lock(mutex);
            return messages.size() >= count;
        };
        EXPECT_TRUE(eventually(isComplete));
        const std::lock_guard lock(mutex);
        return std::exchange(messages, {});
    }
    /// Waits for `count` whole passes (checks of the host) of the monitor thread that begin after this call.
    /// Each pass begins by emptying the session's key file.
    void awaitPasses(int count = 1) const
    {
        for (int beginning = 0; beginning <= count; ++beginning) {
            writeFile(keyFile, "waiting");
            EXPECT_TRUE(eventually([&] { return fs::file_size(keyFile) == 0; }));
        }
    }
    std::vector<std::string> busNames() const
    {
        std::vector<std::string> names;
        backend->getKestBusNamesList(names);
        return names;
    }
    std::string sessionBytes() const
    {
        return {reinterpret_cast<const char*>(system.session->bytes()), RawSegment::kSessionBytes};
    }
    static std::size_t agentByte(std::size_t offset)
    {
        return RawSegment::slot(TestPaths::kAgentSlot) + offset;
    }

    TestPaths system;
    const std::string fifo = system.paths.encodingProgressFifo;
    const std::string keyFile = system.sessionKeyFile.path;
    const std::string file = system.paths.settingsFile();
    std::atomic<int> hostChanges = 0;
    std::unique_ptr<Settings::Backend> backend; // destroyed before `messages`
};

} // namespace Kest::Test
