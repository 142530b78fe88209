// A Backend with private paths and segments, and all messages that it has sent.
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
protected:
    BackendTest() { std::signal(SIGPIPE, SIG_IGN); }

    void start(std::chrono::nanoseconds period = 5ms)
    {
        backend.reset();
        backend = std::make_unique<Settings::Backend>(place.paths, period);
        running = backend.get();
        backend->messageContext = this;
        backend->hostStateCallback = [](void* context) { ++static_cast<BackendTest*>(context)->hostChanges; };
        backend->messageCallback = [](void* context, int number, int type, const char* description) {
            auto& self = *static_cast<BackendTest*>(context);
            const auto text = description == nullptr ? "null" : "'" + std::string(description) + "'";
            std::vector<std::string> names;
            self.running->getKestBusNamesList(names); // queries are allowed in a callback
            const auto errors = self.running->getEncodingStatus(type).errorCount;
            const std::lock_guard lock(self.mutex);
            self.messages.push_back(std::to_string(number) + " " + std::to_string(type) + " " + text);
            self.errorCounts.push_back(errors);
        };
    }

    /// All messages, each as "number type 'description'", as soon as there are so many.
    std::vector<std::string> heard(std::size_t count = 0)
    {
        std::vector<std::string> all;
        EXPECT_TRUE(eventually([&] {
            const std::lock_guard lock(mutex);
            all = messages;
            return all.size() >= count;
        }));
        return all;
    }
    void forget()
    {
        const std::lock_guard lock(mutex);
        messages.clear();
    }
    /// Returns when a whole pass of the monitor has ended that began after this call: each begins by emptying
    /// the session's marker file.
    void awaitWholePass() const
    {
        for (int beginning = 0; beginning < 2; ++beginning) {
            writeFile(marker, "waiting");
            EXPECT_TRUE(eventually([&] { return fs::file_size(marker) == 0; }));
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
        return {reinterpret_cast<const char*>(place.session->bytes()), RawSegment::kSessionBytes};
    }
    static std::size_t agentByte(std::size_t offset)
    {
        return RawSegment::slot(TestPaths::kAgentSlot) + offset;
    }

    TestPaths place;
    const std::string fifo = place.paths.encodingProgressFifo;
    const std::string marker = place.sessionMarker.marker;
    const std::string file = place.paths.settingsFile();
    std::mutex mutex;
    std::vector<std::string> messages;
    std::vector<int> errorCounts; // of the encoding of each message, as the callback read it
    std::atomic<int> hostChanges = 0;
    Settings::Backend* running = nullptr;
    std::unique_ptr<Settings::Backend> backend; // ends first: it writes to the messages
};

} // namespace Kest::Test
