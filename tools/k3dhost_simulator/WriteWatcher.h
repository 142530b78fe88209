// Finds out what other processes wrote into the session, by comparing it with what should be there.
#pragma once

#include "lipc/SessionBuffer.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace K3DHostSimulator {

/// A text that another process writes byte by byte.
class SettledText {
public:
    const std::string& text() const { return settled; }

    /// Takes what one look saw. True when two looks in a row agree on a new text.
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

/// Keeps the session as the host left it, plus what was reported already. Every change that the host makes in
/// the segment must be made in `expected` too.
class WriteWatcher {
public:
    WriteWatcher();

    LIPC::SessionBuffer& expected() { return *image; }

    /// One line for each of the agent's own fields that changed since the last look. A text is reported when
    /// two looks in a row found it, so that it is never one that is half written. Of several writes between
    /// two looks only the last is seen, and none that left the old value.
    std::vector<std::string> agentWrites(const LIPC::SessionBuffer& session);

    /// "FOREIGN WRITE at offset N" for the first changed byte of each stretch between the agent's own fields.
    /// What was reported once is expected from then on. Compares all of the 3.4 MB.
    std::vector<std::string> foreignWrites(const LIPC::SessionBuffer& session);

    /// Whether a line could come from this class.
    static bool canReport(std::string_view line);

private:
    std::string defaultBusLine() const;

    std::unique_ptr<LIPC::SessionBuffer> image;
    SettledText facility;
    SettledText defaultBus;
};

} // namespace K3DHostSimulator
