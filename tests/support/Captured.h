// What the code under test has printed, once all of it is written.
#pragma once

#include "log/Output.h"

#include <gtest/gtest.h>

#include <string>

namespace Kest::Test {

inline std::string capturedOutput()
{
    Lct::flushOutput(5000);
    return testing::internal::GetCapturedStdout();
}

inline std::string capturedErrors()
{
    Lct::flushOutput(5000);
    return testing::internal::GetCapturedStderr();
}

} // namespace Kest::Test
