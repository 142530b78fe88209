#include "app/MessageSlot.h"

#include "backend/Backend.h"
#include "text/Utf8.h"

#include <utility>

namespace Kest::App {
namespace {

constexpr std::size_t kLongestDescription = 1022; // bytes
// More encoders than run at once anywhere; a flood beyond it is skipped for good.
constexpr std::size_t kMostSkippedEncodings = 1024;

} // namespace

std::string descriptionText(const char* description)
{
    if (description == nullptr || !Text::isUtf8(description))
        return {};
    std::string text = description;
    if (text.size() > kLongestDescription)
        text.resize(Text::wholeCharacters(text, kLongestDescription));
    return text;
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
    return BackendMessage{msg_nr_queue, msg_type_queue, std::exchange(msg_descr_queue, {}), takeSkipped()};
}

bool MessageSlot::isBusList() const
{
    return msg_type_queue == 0 && msg_nr_queue == Settings::kMsgBusListChanged;
}

// The message that waits gives way.
void MessageSlot::noteSkipped()
{
    if (isBusList())
        busListSkipped = true;
    else if (msg_type_queue == 0)
        statusSkipped = msg_nr_queue;
    if (msg_type_queue <= 0 || encodingsSkipped.size() >= kMostSkippedEncodings)
        return;
    auto& encoding = encodingsSkipped.try_emplace(msg_type_queue, SkippedEncoding{++skips}).first->second;
    encoding.hasFailed = msg_nr_queue < 0;
}

// The message that waits tells what a skipped one would have told.
void MessageSlot::forgetSkipped()
{
    if (isBusList())
        busListSkipped = false;
    else if (msg_type_queue == 0)
        statusSkipped.reset();
    encodingsSkipped.erase(msg_type_queue);
}

SkippedMessages MessageSlot::takeSkipped()
{
    std::map<std::size_t, SkippedMessages::Encoding> inOrder;
    for (const auto& [pid, encoding] : encodingsSkipped)
        inOrder[encoding.order] = {pid, encoding.hasFailed};
    encodingsSkipped.clear();
    SkippedMessages skipped{
        std::exchange(statusSkipped, std::nullopt), std::exchange(busListSkipped, false), {}};
    for (const auto& [order, encoding] : inOrder)
        skipped.encodings.push_back(encoding);
    return skipped;
}

} // namespace Kest::App
