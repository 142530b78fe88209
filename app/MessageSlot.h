// The way of a backend message from the Backend's threads to the main thread.
#pragma once

#include "backend/Guarded.h"

#include <cstdint>
#include <optional>
#include <string>

namespace Kest::App {

/// The status messages that gave way to a newer one, unless that one replaces them. What encoders reported
/// meanwhile is in the Backend's table.
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

/// The text of a description: none for null and for invalid UTF-8; an over-long one is cut at a whole
/// character.
std::string descriptionText(const char* description);

/// Room for one message on purpose: the newest one wins, and a main thread that is busy is not asked twice.
/// Any thread.
class MessageSlot {
public:
    /// Keeps the message in place of one that waits. True when none was waiting: then somebody must come and
    /// take it.
    bool queueMsgFromBackend(std::int32_t number, std::int32_t type, const char* description);

    /// Empties the slot.
    std::optional<BackendMessage> take();

private:
    bool isBusList() const KEST_REQUIRES(msgLock);
    void noteSkipped() KEST_REQUIRES(msgLock);
    void forgetSkipped() KEST_REQUIRES(msgLock);

    Mutex msgLock;
    std::int32_t msg_nr_queue KEST_GUARDED_BY(msgLock) = 0;
    std::int32_t msg_type_queue KEST_GUARDED_BY(msgLock) = 0;
    std::string msg_descr_queue KEST_GUARDED_BY(msgLock);
    std::int32_t msgs_in_queue KEST_GUARDED_BY(msgLock) = 0; // 0 or 1
    SkippedMessages skipped KEST_GUARDED_BY(msgLock);
};

} // namespace Kest::App
