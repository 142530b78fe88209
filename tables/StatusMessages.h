// The texts of the host's status numbers.
#pragma once

#include <algorithm>
#include <cstdint>
#include <iterator>

namespace Kest::Settings {

struct StatusMessage {
    std::int32_t number;
    const char* text;
    bool isShown; // the agent calls `KestSettingsAppDelegate::showNotification` with the text
};

inline constexpr StatusMessage kStatusMessages[] = {
    {-9, "HDX High Latency is not supported at 96kHz", false},
    {-7, "No volume information is received", true},
    {-5, "Audio is received on the Kest-Mixing Engine input bus", true},
    {-4, "One or more Kest-Bus plug-ins use a different buffer size", false},
    {-3, "One or more Kest-Return plug-ins use a different buffer size", false},
    {-2, "Press play to relink", true},
    {-1, "One or more Kest-Panner plug-ins use a different buffer size", false},
    {1, "Dynamically linked Core API library (vortalinksdk) is not loaded", false},
    {2, "Linking...", true},
};

/// Returns the message with this number; null if there is none.
inline const StatusMessage* statusMessage(std::int32_t number)
{
    const auto* found = std::ranges::find(kStatusMessages, number, &StatusMessage::number);
    return found == std::end(kStatusMessages) ? nullptr : found;
}

} // namespace Kest::Settings
