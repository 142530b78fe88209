#include "app/MessageSlot.h"

#include "app/Utf8.h"
#include "backend/Backend.h"

#include <cstring>
#include <utility>

namespace Kest::App {
namespace {

constexpr std::size_t kLongestDescription = 1022; // bytes
// More encoders than run at once anywhere; a flood beyond it is skipped for good.
constexpr std::size_t kMostSkippedEncodings = 1024;

} // namespace

std::string descriptionText(const char* description)
{
    if (description == nullptr || !isUtf8(description))
        return {};
    auto length = std::strlen(description);
    if (length > kLongestDescription) {
        length = kLongestDescription;
        while ((static_cast<unsigned char>(description[length]) & 0xC0U) == 0x80U) // inside a character
            --length;
    }
    return {description, length};
}

bool MessageSlot::queueMsgFromBackend(std::int32_t number, std::int32_t type, const char* description)
{
    auto text = descriptionText(description);
    const MutexLock lock(msgLock);
    const bool wasEmpty = msgs_in_queue < 1;
    if (!wasEmpty)
        noteSkipped();
    msg_nr_queue = number;
    msg_type_queue = type;
    msg_descr_queue = std::move(text);
    msgs_in_queue = 1;
    forgetSkipped();
    return wasEmpty;
}

std::optional<BackendMessage> MessageSlot::take()
{
    const MutexLock lock(msgLock);
    if (msgs_in_queue < 1)
        return std::nullopt;
    msgs_in_queue = 0;
    return BackendMessage{msg_nr_queue, msg_type_queue, std::exchange(msg_descr_queue, {})};
}

SkippedMessages MessageSlot::takeSkipped()
{
    const MutexLock lock(msgLock);
    return std::exchange(skipped, {});
}

// The message that waits gives way.
void MessageSlot::noteSkipped()
{
    if (msg_type_queue > 0 && skipped.encodings.size() < kMostSkippedEncodings)
        skipped.encodings[msg_type_queue] = msg_nr_queue < 0;
    else if (msg_type_queue == 0 && msg_nr_queue == Settings::kMsgBusListChanged)
        skipped.busList = true;
}

// The message that waits tells what a skipped one would have told.
void MessageSlot::forgetSkipped()
{
    if (msg_type_queue == 0 && msg_nr_queue == Settings::kMsgBusListChanged)
        skipped.busList = false;
    else
        skipped.encodings.erase(msg_type_queue);
}

} // namespace Kest::App
