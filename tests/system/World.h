// What the tests of the real programs know of the private world that they run in, and how they come into it.
#pragma once

#include "tests/support/Eventually.h"
#include "tests/support/Process.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <memory>
#include <string>
#include <unistd.h>

namespace Kest::Test {

constexpr char kFacilities[] = "/Library/Application Support/Kestronics/MDA/Building blocks/Physical layouts";
constexpr char kFifo[] = "/tmp/kest_settings_enc_progress_fifo";

inline std::string program(const std::string& name) { return std::string(KEST_PROGRAMS) + "/" + name; }

inline std::filesystem::path home() { return std::getenv("HOME"); }

inline std::string settings()
{
    return readFile(home() / "Library/Application Support/Kestronics/Kest-Settings.xml");
}

/// Whether the settings file holds a value.
inline bool hasSetting(const std::string& name, const std::string& value)
{
    return settings().find("name=\"" + name + "\" val=\"" + value + "\"") != std::string::npos;
}

/// Whether the encoders' pipe is there and somebody reads it.
inline bool isPipeRead()
{
    const int end = open(kFifo, O_WRONLY | O_NONBLOCK | O_CLOEXEC);
    return end >= 0 && close(end) == 0;
}

/// A fresh home, and one facility.
class World : public testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_EQ(home(), "/tmp/home") << "run this in a world of its own: tools/private_world";
        std::filesystem::remove_all(home());
        std::filesystem::create_directories(home());
        std::filesystem::remove_all(kFacilities);
        std::filesystem::create_directories(std::filesystem::path(kFacilities) / "Studio_A");
    }
};

/// With the simulated host and the agent as processes, once they are started.
class SimulatedStudio : public World {
protected:
    void startHost(const std::string& how = "start")
    {
        host = std::make_unique<Process>(
            std::vector<std::string>{program("k3dhost-simulator"), "--scenario", "-"});
        tellHost(how, "host started");
    }
    void tellHost(const std::string& command, const std::string& answer)
    {
        host->say(command);
        ASSERT_TRUE(host->prints(answer));
    }
    void startAgent()
    {
        agent = std::make_unique<Process>(std::vector<std::string>{program("kest-settings-terminal")});
        ASSERT_TRUE(agent->prints("Quit Kest Settings"));
        ASSERT_TRUE(eventually(isPipeRead)); // its thread can be later than the menu
    }
    void choose(const std::string& path) const { agent->say("choose " + path); }

    std::unique_ptr<Process> host;
    std::unique_ptr<Process> agent;
};

} // namespace Kest::Test
