// A Backend in a place of the test's own, all that it has said, and an encoder that writes to it.
#pragma once

#include "backend/Backend.h"
#include "tests/support/Captured.h"
#include "tests/support/Eventually.h"
#include "tests/support/TestPlace.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <fcntl.h>
#include <mutex>
#include <sys/ioctl.h>
#include <sys/stat.h>

namespace Kest::Test {

inline struct stat statusOf(const std::string& path)
{
    struct stat status {};
    lstat(path.c_str(), &status);
    return status;
}

/// Returns 0 where threads are not listed in files.
inline std::ptrdiff_t threadCount()
{
    std::error_code none;
    return std::distance(std::filesystem::directory_iterator("/proc/self/task", none), {});
}

/// The writing end of the encoders' pipe.
class Encoder {
public:
    /// Waits until somebody reads there.
    explicit Encoder(const std::string& path)
    {
        EXPECT_TRUE(eventually([&] {
            const bool isPipe = S_ISFIFO(statusOf(path).st_mode);
            file = isPipe ? open(path.c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC) : -1;
            return file >= 0;
        }));
        fcntl(file, F_SETFL, 0); // from here on, writing waits for room
    }
    ~Encoder() { close(file); }
    Encoder(const Encoder&) = delete;
    Encoder& operator=(const Encoder&) = delete;

    bool write(const std::string& text) const { return ::write(file, text.data(), text.size()) > 0; }
    /// Waits until all that was written has been read.
    void drain() const
    {
        int waiting = -1;
        EXPECT_TRUE(eventually([&] { return ioctl(file, FIONREAD, &waiting) == 0 && waiting == 0; }));
    }

private:
    int file = -1;
};

class BackendTest : public testing::Test {
protected:
    BackendTest()
    {
        std::signal(SIGPIPE, SIG_IGN);
        std::thread([] {}).join(); // a sanitizer's own thread comes with the first and must not be counted
    }

    void start(std::chrono::nanoseconds period = std::chrono::milliseconds(5))
    {
        backend.reset();
        backend = std::make_unique<Settings::Backend>(place.paths, period);
        backend->messageContext = this;
        backend->messageCallback = [](void* context, int number, int type, const char* description) {
            auto& self = *static_cast<BackendTest*>(context);
            const auto words = description == nullptr ? "null" : "'" + std::string(description) + "'";
            const std::lock_guard lock(self.mutex);
            self.messages.push_back(std::to_string(number) + " " + std::to_string(type) + " " + words);
        };
    }

    /// All messages, each as "number type 'description'", as soon as there are so many.
    std::vector<std::string> heard(std::size_t count = 0)
    {
        const auto all = [this] {
            const std::lock_guard lock(mutex);
            return messages;
        };
        EXPECT_TRUE(eventually([&] { return all().size() >= count; }));
        return all();
    }
    void forget()
    {
        const std::lock_guard lock(mutex);
        messages.clear();
    }
    /// Returns when a whole pass of the monitor has gone by that began after this call: each begins by
    /// emptying the session's marker file.
    void awaitWholePass() const
    {
        const auto marker = "/tmp/LIPC_" + place.paths.sessionSegment;
        for (int beginning = 0; beginning < 2; ++beginning) {
            writeFile(marker, "waiting");
            EXPECT_TRUE(eventually([&] { return std::filesystem::file_size(marker) == 0; }));
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
        return RawSegment::slot(TestPlace::kAgentSlot) + offset;
    }

    TestPlace place;
    const std::string fifo = place.paths.encodingProgressFifo;

private:
    std::mutex mutex;
    std::vector<std::string> messages;

protected:
    std::unique_ptr<Settings::Backend> backend; // ends first: it writes to the messages
};

} // namespace Kest::Test
