// Private paths and segments for a test. They replace the real ones that the agent reads and writes.
#pragma once

#include "backend/SystemPaths.h"
#include "tests/support/RawSegment.h"
#include "tests/support/TemporaryFolder.h"

#include <atomic>
#include <memory>

namespace Kest::Test {

inline std::string uniqueSegment(const std::string& name)
{
    static std::atomic<int> count = 0;
    return "TEST_" + name + "_" + std::to_string(getpid()) + "_" + std::to_string(++count);
}

struct TestPaths {
    static constexpr int kAgentSlot = 3;

    /// Creates the segments of a host with only the agent's record. Returns the session segment.
    RawSegment& startHost(std::int32_t wordSize = 64)
    {
        stopHost();
        version = std::make_unique<RawSegment>(paths.versionSegment, 8);
        publish(wordSize);
        session = std::make_unique<RawSegment>(paths.sessionSegment, RawSegment::kSessionBytes);
        session->putAgentRecord(kAgentSlot);
        return *session;
    }
    /// Writes the host's word size in bits.
    void publish(std::int32_t wordSize) const { version->put(4, wordSize); }
    void stopHost()
    {
        version.reset();
        session.reset();
    }

    const TemporaryFolder folder;
    Settings::SystemPaths paths{.settingsFolder = folder / "settings",
                                .encodingProgressFifo = folder / "fifo",
                                .lastUserFile = folder / "lastuser.txt",
                                .facilitiesFolder = folder / "facilities",
                                .restartCommand = folder / "restart.command",
                                .uninstaller = folder / "uninstaller",
                                .launchAgent = folder / "agent.plist",
                                .versionSegment = uniqueSegment("VERSION"),
                                .sessionSegment = uniqueSegment("SESSION")};
    const KeyFileRemover versionKeyFile{paths.versionSegment};
    const KeyFileRemover sessionKeyFile{paths.sessionSegment};
    std::unique_ptr<RawSegment> version;
    std::unique_ptr<RawSegment> session;
};

} // namespace Kest::Test
