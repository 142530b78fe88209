// Places of a test's own for everything that the agent reads and writes outside itself.
#pragma once

#include "backend/SystemPaths.h"
#include "tests/support/RawSegment.h"
#include "tests/support/TemporaryFolder.h"

#include <atomic>
#include <memory>

namespace Kest::Test {

class TestPlace {
public:
    TestPlace()
    {
        static std::atomic<int> count = 0;
        const auto unique = std::to_string(getpid()) + "_" + std::to_string(++count);
        paths.settingsFolder = folder / "settings";
        paths.encodingProgressFifo = folder / "fifo";
        paths.lastUserMarker = folder / "lastuser.txt";
        paths.facilitiesFolder = folder / "facilities";
        paths.restartCommand = folder / "restart.command";
        paths.uninstaller = folder / "uninstaller";
        paths.launchAgent = folder / "agent.plist";
        paths.versionSegment = "TEST_VERSION_" + unique;
        paths.sessionSegment = "TEST_SESSION_" + unique;
    }
    ~TestPlace()
    {
        stopHost();
        unlink(("/tmp/LIPC_" + paths.versionSegment).c_str());
        unlink(("/tmp/LIPC_" + paths.sessionSegment).c_str());
    }
    TestPlace(const TestPlace&) = delete;
    TestPlace& operator=(const TestPlace&) = delete;

    /// A host with an empty registry but for the agent's record, in slot 3.
    RawSegment& startHost(std::int32_t wordSize = 64)
    {
        version = std::make_unique<RawSegment>(paths.versionSegment, 8);
        publish(wordSize);
        session = std::make_unique<RawSegment>(paths.sessionSegment, RawSegment::kSessionBytes);
        session->putAgentRecord(kAgentSlot);
        return *session;
    }
    void publish(std::int32_t wordSize) { version->putInt(4, wordSize); }
    void stopHost()
    {
        version.reset();
        session.reset();
    }

    static constexpr int kAgentSlot = 3;
    const TemporaryFolder folder;
    Settings::SystemPaths paths;
    std::unique_ptr<RawSegment> session;

private:
    std::unique_ptr<RawSegment> version;
};

} // namespace Kest::Test
