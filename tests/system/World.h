// What the tests of the real programs know of the private world that they run in.
#pragma once

#include "tests/support/TemporaryFolder.h"

#include <cstdlib>
#include <filesystem>
#include <string>

namespace Kest::Test {

constexpr char kFacilities[] = "/Library/Application Support/Kestronics/MDA/Building blocks/Physical layouts";

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

} // namespace Kest::Test
