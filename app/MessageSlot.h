// The way of a backend message from the Backend's threads to the main thread.
#pragma once

#include "backend/Guarded.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace Kest::App {

/// What the messages were about that gave way to a newer one, as far as that one does not tell it too.
struct SkippedMessages {
    struct Encoding {
        std::int32_t pid = 0;
        bool hasFailed = false; // by its last message
    };
    std::optional<std::int32_t> status; // the newest status number other than 3
    bool busList = false;
    std::vector<Encoding> encodings; // in the order in which they were skipped first
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
    struct SkippedEncoding {
        std::size_t order = 0;
        bool hasFailed = false;
    };
    bool isBusList() const KEST_REQUIRES(msgLock);
    void noteSkipped() KEST_REQUIRES(msgLock);
    void forgetSkipped() KEST_REQUIRES(msgLock);
    SkippedMessages takeSkipped() KEST_REQUIRES(msgLock);

    Mutex msgLock;
    std::int32_t msg_nr_queue KEST_GUARDED_BY(msgLock) = 0;
    std::int32_t msg_type_queue KEST_GUARDED_BY(msgLock) = 0;
    std::string msg_descr_queue KEST_GUARDED_BY(msgLock);
    std::int32_t msgs_in_queue KEST_GUARDED_BY(msgLock) = 0; // 0 or 1
    std::optional<std::int32_t> statusSkipped KEST_GUARDED_BY(msgLock);
    bool busListSkipped KEST_GUARDED_BY(msgLock) = false;
    std::map<std::int32_t, SkippedEncoding> encodingsSkipped KEST_GUARDED_BY(msgLock); // by process id
    std::size_t skips KEST_GUARDED_BY(msgLock) = 0;
};

} // namespace Kest::App
