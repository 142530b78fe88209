#include "bench/Encoders.h"

#include "backend/SystemPaths.h"

#include <chrono>
#include <fcntl.h>
#include <stdexcept>
#include <string_view>
#include <thread>
#include <unistd.h>

namespace Kest::Bench {
namespace {

constexpr int kFirstPid = 10'000'000; // more than Linux ever gives
constexpr std::string_view kName = "Encoding ";

std::string lineOf(int encoding, const std::string& rest)
{
    return "pid: " + std::to_string(kFirstPid + encoding) + " , " + rest + "\n";
}

} // namespace

std::string encodingName(int encoding) { return std::string(kName) + std::to_string(encoding); }

std::string nameLine(int encoding)
{
    return lineOf(encoding, "path: /tmp/out/" + encodingName(encoding) + ".wav");
}

std::string progressLine(int encoding, int percentage)
{
    return lineOf(encoding, "P: " + std::to_string(percentage));
}

Progress progressIn(const std::string& label)
{
    const auto gap = label.find("  ");
    if (!label.starts_with(kName) || gap == std::string::npos || !label.ends_with('%'))
        return {};
    return {std::stoi(label.substr(kName.size(), gap - kName.size())), std::stoi(label.substr(gap))};
}

EncoderPipe::EncoderPipe()
{
    const auto path = Settings::SystemPaths().encodingProgressFifo;
    for (int tries = 0; tries < 1000 && descriptor < 0; ++tries) {
        descriptor = open(path.c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC);
        if (descriptor < 0)
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    if (descriptor < 0)
        throw std::runtime_error("no agent hears the encoders");
    fcntl(descriptor, F_SETFL, 0);
}

EncoderPipe::~EncoderPipe() { close(descriptor); }

bool EncoderPipe::write(const std::string& lines) const
{
    return ::write(descriptor, lines.data(), lines.size()) == static_cast<ssize_t>(lines.size());
}

} // namespace Kest::Bench
