// Passes the Backend's messages from its threads to the main thread.
#pragma once

#include "backend/Mutex.h"

#include <cstdint>
#include <optional>
#include <string>

namespace Kest::App {

/// Records status messages (`type` 0) that were replaced in the `MessageSlot` before they were taken. There
/// are two kinds: "buses changed", and all other status messages. A newer message of the same kind clears the
/// record of that kind. Encoders' messages are not recorded, because the Backend's table contains the newest
/// report of each encoder.
struct SkippedMessages {
    std::optional<std::int32_t> status; // the newest replaced status number; never 3
    bool busList = false; // whether a message with status number 3, "buses changed", was replaced
};

/// A message of the Backend; `BackendMessageCallback` (backend/Backend.h) describes `number` and `type`.
struct BackendMessage {
    std::int32_t number = 0;
    std::int32_t type = 0;
    std::string description; // valid UTF-8 of at most 1022 bytes
    SkippedMessages skipped; // older status messages that were replaced
};

/// Returns `description`, cut to at most 1022 bytes without splitting a character. Returns an empty text for
/// null and for invalid UTF-8.
std::string descriptionText(const char* description);

/// Stores one message, which a newer message replaces. So at most one job that calls `take` is queued,
/// however long the main thread is busy. Any thread.
class MessageSlot {
public:
    /// Stores a message; replaces a stored one. Returns true if the slot was empty. In that case the caller
    /// must post a job that calls `take`. `description` may be null.
    bool queueMsgFromBackend(std::int32_t number, std::int32_t type, const char* description);

    /// Returns the message and empties the slot; nullopt if the slot was empty.
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
