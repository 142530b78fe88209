// What the host's status messages say.
#pragma once

#include <cstdint>

namespace Kest::App {

struct StatusMessage {
    std::int32_t number;
    const char* text;
    bool isShown; // handed to the notification hook; the others leave no trace in the menu on purpose
};

/// Null for a number that says nothing.
const StatusMessage* statusMessage(std::int32_t number);

} // namespace Kest::App
