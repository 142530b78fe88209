// Detects what other processes have written into the session, by comparing it with its expected content.
#pragma once

#include "lipc/SessionBuffer.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace K3DHostSimulator {

/// Debounces a text that another process writes byte by byte. Accepts a text only when two successive
/// readings are equal.
class Debounced {
public:
    /// Returns the text that was accepted last; initially empty.
    const std::string& text() const { return stable; }

    /// Adds a reading. Returns true if `text()` has changed.
    bool update(std::string_view now)
    {
        const bool agrees = now == last;
        last = now;
        if (!agrees || stable == last)
            return false;
        stable = last;
        return true;
    }

private:
    std::string stable;
    std::string last;
};

/// Contains the expected content of the session: what the host has written, and what other processes have
/// written and this class has reported. The host must make each of its changes in the segment and in
/// `expected`. Not synchronised.
class WriteWatcher {
public:
    WriteWatcher();

    LIPC::SessionBuffer& expected() { return *expectedSession; }

    /// Returns one line for each of the agent's numbers that differs from `expected`, and copies the number
    /// to `expected`. Also returns one line for each of the agent's texts that differs from the text last
    /// reported. A text is reported only when two successive calls have found it. A value that was replaced
    /// between two calls is not reported.
    std::vector<std::string> takeAgentWrites(const LIPC::SessionBuffer& session);

    /// Compares all bytes outside the agent's fields, about 3.4 MB, with `expected`. These bytes form gaps
    /// before and between the fields, because the last field ends with the session. Returns the line "FOREIGN
    /// WRITE at offset N" for each gap in which a byte differs, and copies the gap to `expected`. N is the
    /// offset in the session of the first byte that differs.
    std::vector<std::string> takeForeignWrites(const LIPC::SessionBuffer& session);

    /// Returns whether `line` has the form of a line that this class reports. Checks only the beginning.
    static bool hasReportForm(std::string_view line);

private:
    std::string defaultBusLine() const;

    std::unique_ptr<LIPC::SessionBuffer> expectedSession;
    Debounced facility;
    Debounced defaultBus;
};

} // namespace K3DHostSimulator
