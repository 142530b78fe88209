// Many measurements of one thing, and what is told of them.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <vector>

namespace Kest::Bench {

using Clock = std::chrono::steady_clock; // the same one in all processes

inline double milliseconds(Clock::duration time)
{
    return std::chrono::duration<double, std::milli>(time).count();
}

using Samples = std::vector<double>;

/// The smallest sample that at least `share` of all do not exceed; of none, 0.
inline double quantile(Samples samples, double share)
{
    if (samples.empty())
        return 0;
    std::ranges::sort(samples);
    const auto count = static_cast<double>(samples.size());
    const auto index = static_cast<std::size_t>(share * count);
    return samples[std::min(index, samples.size() - 1)];
}
inline double median(const Samples& samples) { return quantile(samples, 0.5); }

inline void print(const char* name, double value) { std::printf("%s %.4f\n", name, value); }

} // namespace Kest::Bench
