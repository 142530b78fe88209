// Captures all text printed after a call of `captureOutput` or `captureErrors`, and no earlier text.
#pragma once

#include "log/Output.h"

#include <gtest/gtest.h>

#include <string>
#include <unistd.h>

namespace Kest::Test {

inline void captureOutput()
{
    Lct::flushOutput(5000);
    testing::internal::CaptureStdout();
}

inline void captureErrors()
{
    Lct::flushOutput(5000);
    testing::internal::CaptureStderr();
}

inline std::string capturedOutput()
{
    Lct::flushOutput(5000);
    return testing::internal::GetCapturedStdout();
}

/// Returns the text written since `captureErrors`, cut to 4096 bytes. The capture continues.
inline std::string errorsSoFar()
{
    std::string text(4096, '\0');
    const auto bytes = pread(STDERR_FILENO, text.data(), text.size(), 0);
    text.resize(bytes > 0 ? static_cast<std::size_t>(bytes) : 0);
    return text;
}

inline std::string capturedErrors()
{
    Lct::flushOutput(5000);
    return testing::internal::GetCapturedStderr();
}

} // namespace Kest::Test
