// Passes a backend message from the Backend's threads to the main thread.
#pragma once

#include "backend/Mutex.h"

#include <cstdint>
#include <optional>
#include <string>

namespace Kest::App {

/// The status messages that were replaced in the slot by a newer message of another kind. Encoding messages
/// are not recorded: the Backend's table contains their reports.
struct SkippedMessages {
    std::optional<std::int32_t> status; // the newest status number other than 3
    bool busList = false;
};

struct BackendMessage {
    std::int32_t number = 0;
    std::int32_t type = 0;
    std::string description; // valid UTF-8 of at most 1022 bytes
    SkippedMessages skipped; // all older than this one
};

/// Returns a description, cut at a whole character to 1022 bytes; empty for null and for invalid UTF-8.
std::string descriptionText(const char* description);

/// Stores one message, by design: a newer one replaces it, and a busy main thread gets one job. Any thread.
class MessageSlot {
public:
    /// Stores the message; replaces a waiting one. Returns true if the slot was empty: then the caller must
    /// schedule a call of `take`.
    bool queueMsgFromBackend(std::int32_t number, std::int32_t type, const char* description);

    /// Empties the slot and returns its message; nullopt if it was empty.
    std::optional<BackendMessage> take();

private:
    bool isBusList() const KEST_REQUIRES(msgLock);
    void recordSkipped() KEST_REQUIRES(msgLock);
    void clearSkipped() KEST_REQUIRES(msgLock);

    Mutex msgLock;
    std::int32_t msg_nr_queue KEST_GUARDED_BY(msgLock) = 0;
    std::int32_t msg_type_queue KEST_GUARDED_BY(msgLock) = 0;
    std::string msg_descr_queue KEST_GUARDED_BY(msgLock);
    std::int32_t msgs_in_queue KEST_GUARDED_BY(msgLock) = 0; // 0 or 1
    SkippedMessages skipped KEST_GUARDED_BY(msgLock);
};

} // namespace Kest::App
