#pragma once

#include "backend/Descriptor.h"
#include "tests/support/Eventually.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/stat.h>

namespace Kest::Test {

class Encoder {
public:
    /// Opens the pipe at `path` for writing, as soon as an agent reads it.
    explicit Encoder(const std::string& path)
    {
        EXPECT_TRUE(eventually([&] {
            struct stat status {};
            const bool isPipe = lstat(path.c_str(), &status) == 0 && S_ISFIFO(status.st_mode);
            pipe = Settings::Descriptor(isPipe ? open(path.c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC) : -1);
            return bool(pipe);
        }));
        fcntl(pipe.get(), F_SETFL, 0); // from now on, `write` blocks while the pipe is full
    }

    bool write(const std::string& text) const { return ::write(pipe.get(), text.data(), text.size()) > 0; }
    /// Waits until everything that was written has been read.
    void drain() const
    {
        int waiting = -1;
        EXPECT_TRUE(eventually([&] { return ioctl(pipe.get(), FIONREAD, &waiting) == 0 && waiting == 0; }));
    }

private:
    Settings::Descriptor pipe;
};

} // namespace Kest::Test
