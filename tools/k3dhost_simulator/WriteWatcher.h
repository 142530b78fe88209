// Detects what other processes wrote into the session by comparing it with its expected content.
#pragma once

#include "lipc/SessionBuffer.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace K3DHostSimulator {

/// Debounces a text that another process writes byte by byte.
class Debounced {
public:
    const std::string& text() const { return stable; }

    /// Takes the text of one reading. Returns true if two readings in a row agree on a new text.
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

/// Keeps the expected content of the session: the host's changes and the reported writes. Each change of the
/// segment by the host must also be made in `expected`.
class WriteWatcher {
public:
    WriteWatcher();

    LIPC::SessionBuffer& expected() { return *expectedSession; }

    /// Returns one line for each of the agent's own fields that changed since the last call. A text is
    /// reported when two calls in a row found it, so that it is never half written. Several writes of a field
    /// between two calls count as the last one; none is reported if the value is the old one.
    std::vector<std::string> agentWrites(const LIPC::SessionBuffer& session);

    /// Returns "FOREIGN WRITE at offset N" for the first changed byte of each range between the agent's own
    /// fields. A reported change is expected from then on. Compares all 3.4 MB.
    std::vector<std::string> foreignWrites(const LIPC::SessionBuffer& session);

    /// Returns whether this class can report such a line.
    static bool canReport(std::string_view line);

private:
    std::string defaultBusLine() const;

    std::unique_ptr<LIPC::SessionBuffer> expectedSession;
    Debounced facility;
    Debounced defaultBus;
};

} // namespace K3DHostSimulator
