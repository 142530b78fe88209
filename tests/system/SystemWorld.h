// What the tests of the real programs share: the fixed places, and a home that is new for each test.
#pragma once

#include "tests/support/Process.h"
#include "tests/support/TemporaryFolder.h"

#include <memory>

namespace Kest::Test {

namespace fs = std::filesystem;

constexpr char kFifo[] = "/tmp/kest_settings_enc_progress_fifo";

inline std::string program(const std::string& name) { return std::string(KEST_PROGRAMS) + "/" + name; }

class SystemWorld : public testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_EQ(home, "/tmp/home") << "run this in a world of its own: tools/private_world";
        fs::remove_all(home);
        fs::create_directories(home);
        fs::remove_all(facilities);
        fs::create_directories(facilities / "Studio_A");
    }
    void expectStored(const std::string& key, const std::string& value) const
    {
        const auto text = readFile(home / "Library/Application Support/Kestronics/Kest-Settings.xml");
        EXPECT_NE(text.find("name=\"" + key + "\" val=\"" + value + "\""), std::string::npos) << text;
    }

    const fs::path home = std::getenv("HOME");
    const fs::path facilities =
        "/Library/Application Support/Kestronics/MDA/Building blocks/Physical layouts";
    std::unique_ptr<Process> agent;
};

} // namespace Kest::Test
