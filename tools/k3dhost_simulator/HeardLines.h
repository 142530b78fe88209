// The lines that others' writing printed, kept for a scenario that waits for one.
#pragma once

#include <algorithm>
#include <deque>
#include <string>

namespace K3DHostSimulator {

/// A line is kept until it is taken, so that it may well come before the wait for it; each is taken once.
class HeardLines {
public:
    void add(const std::string& line)
    {
        // Nobody waits for what lies this far back, and a host that runs for days must not grow.
        constexpr std::size_t kKept = 1000;
        if (lines.size() == kKept)
            lines.pop_front();
        lines.push_back(line);
    }

    void forget() { lines.clear(); }

    /// Whether there is such a line; it is gone then.
    bool take(const std::string& line)
    {
        const auto found = std::find(lines.begin(), lines.end(), line);
        if (found == lines.end())
            return false;
        lines.erase(found);
        return true;
    }

private:
    std::deque<std::string> lines;
};

} // namespace K3DHostSimulator
