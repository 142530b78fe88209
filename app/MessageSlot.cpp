#include "app/MessageSlot.h"

#include "backend/Backend.h"
#include "text/Utf8.h"

#include <utility>

namespace Kest::App {
namespace {

constexpr std::size_t kMaxDescriptionLength = 1022; // bytes

} // namespace

std::string descriptionText(const char* description)
{
    if (description == nullptr || !Text::isUtf8(description))
        return {};
    std::string text = description;
    if (text.size() > kMaxDescriptionLength)
        text.resize(Text::wholeCharacters(text, kMaxDescriptionLength));
    return text;
}

bool MessageSlot::queueMsgFromBackend(std::int32_t number, std::int32_t type, const char* description)
{
    auto text = descriptionText(description);
    const MutexLock lock(msgLock);
    const bool wasEmpty = msgs_in_queue < 1;
    if (!wasEmpty)
        recordSkipped();
    msg_nr_queue = number;
    msg_type_queue = type;
    msg_descr_queue = std::move(text);
    msgs_in_queue = 1;
    clearSkipped();
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

// Records the waiting message, which is about to be replaced.
void MessageSlot::recordSkipped()
{
    if (isBusList())
        skipped.busList = true;
    else if (msg_type_queue == 0)
        skipped.status = msg_nr_queue;
}

// Clears the record of the new message's kind, which the new message replaces.
void MessageSlot::clearSkipped()
{
    if (isBusList())
        skipped.busList = false;
    else if (msg_type_queue == 0)
        skipped.status.reset();
}

} // namespace Kest::App
