#include "app/MessageSlot.h"

#include "app/Utf8.h"
#include "backend/Backend.h"

#include <cstring>
#include <utility>

namespace Kest::App {
namespace {

constexpr std::size_t kLongestDescription = 1022; // bytes

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
    return BackendMessage{msg_nr_queue, msg_type_queue, std::exchange(msg_descr_queue, {}),
                          std::exchange(skipped, {})};
}

bool MessageSlot::isBusList() const
{
    return msg_type_queue == 0 && msg_nr_queue == Settings::kMsgBusListChanged;
}

// The message that waits gives way.
void MessageSlot::noteSkipped()
{
    if (isBusList())
        skipped.busList = true;
    else if (msg_type_queue == 0)
        skipped.status = msg_nr_queue;
}

// The message that waits replaces a skipped one of its kind.
void MessageSlot::forgetSkipped()
{
    if (isBusList())
        skipped.busList = false;
    else if (msg_type_queue == 0)
        skipped.status.reset();
}

} // namespace Kest::App
