#include "app/MessageSlot.h"

#include "app/Utf8.h"

#include <cstring>
#include <utility>

namespace Kest::App {
namespace {

constexpr std::size_t kLongestDescription = 1022; // bytes

std::string textOf(const char* description)
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

} // namespace

bool MessageSlot::queueMsgFromBackend(std::int32_t number, std::int32_t type, const char* description)
{
    auto text = textOf(description);
    const MutexLock lock(msgLock);
    const bool wasEmpty = msgs_in_queue < 1;
    msg_nr_queue = number;
    msg_type_queue = type;
    msg_descr_queue = std::move(text);
    msgs_in_queue = 1;
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

} // namespace Kest::App
