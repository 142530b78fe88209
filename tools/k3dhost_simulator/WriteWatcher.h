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

    /// Adds a reading. Returns whether this has changed `text()`.
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
/// written and this class has reported. The host must make each of its own changes both in the segment and in
/// `expected()`. Not synchronised.
class WriteWatcher {
public:
    WriteWatcher();

    LIPC::SessionBuffer& expected() { return *expectedSession; }

    /// Returns one line, for example "SoloMode 1", for each changed field that the agent may write. A
    /// parameter has changed if it differs from `expected()`, to which this function copies it. A text (the
    /// facility or the id of the default bus) has changed if it differs from the text reported last. A
    /// changed text is reported only after two successive calls have found the same text. If a field is
    /// written several times between two calls, only its last value can be reported.
    std::vector<std::string> takeAgentWrites(const LIPC::SessionBuffer& session);

    /// Compares all bytes outside the fields of `takeAgentWrites`, about 3.4 MB, with `expected()`. Returns
    /// one line "FOREIGN WRITE at offset N" for each gap (before or between the fields) that differs, and
    /// copies the gap to `expected()`. N is the offset of the first different byte in the session. No gap
    /// follows the last field.
    std::vector<std::string> takeForeignWrites(const LIPC::SessionBuffer& session);

    /// Returns whether `line` begins like a line that this class returns. Does not check the rest.
    static bool hasReportForm(std::string_view line);

private:
    std::string defaultBusLine() const;

    std::unique_ptr<LIPC::SessionBuffer> expectedSession;
    Debounced facility;
    Debounced defaultBus;
};

} // namespace K3DHostSimulator
