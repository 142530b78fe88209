// A text that another process writes byte by byte, as it is once the writing is over.
#pragma once

#include <string>
#include <string_view>
#include <utility>

namespace K3DHostSimulator {

/// Takes a new text only when two looks in a row agree on it.
class SettledText {
public:
    explicit SettledText(std::string first = {}) : settled(std::move(first)), seen(settled) {}

    const std::string& text() const { return settled; }

    /// Tells what one look saw. True when with it a new text has settled.
    bool look(std::string_view now)
    {
        const bool agrees = now == seen;
        seen = now;
        if (!agrees || settled == seen)
            return false;
        settled = seen;
        return true;
    }

private:
    std::string settled;
    std::string seen;
};

} // namespace K3DHostSimulator
