// Detects what other processes have written into the session, by comparing it with its expected content.
#pragma once

#include "lipc/SessionBuffer.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace K3DHostSimulator {

/// Debounces a text, because another process writes it byte by byte: a text counts only when two successive
/// readings are equal.
class Debounced {
public:
    /// Returns the last text that counted; initially empty.
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

/// Contains the expected content of the session: what the host has written and what was reported. The host
/// must make each of its changes in the segment and in `expected`. Not synchronised.
class WriteWatcher {
public:
    WriteWatcher();

    LIPC::SessionBuffer& expected() { return *expectedSession; }

    /// Returns one line for each of the agent's fields whose value differs from `expected`, and changes
    /// `expected` accordingly. Only the value at the time of the call matters. A text is reported only when
    /// two successive calls have found the same text.
    std::vector<std::string> takeAgentWrites(const LIPC::SessionBuffer& session);

    /// Returns the line "FOREIGN WRITE at offset N" for each gap between the agent's fields in which a byte
    /// differs from `expected`, and copies that gap to `expected`. N is the offset in the session of the
    /// first byte that differs. Compares all 3.4 MB.
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
