#include "platform/statusnotifier/DesktopWorkspace.h"

#include <cstdio>
#include <string_view>

namespace Kest::StatusNotifier {
namespace {

constexpr std::uint64_t kReplyTimeout = 2'000'000; // microseconds

int onFileManagerAnswered(sd_bus_message* answer, void* workspace, sd_bus_error*)
{
    static_cast<DesktopWorkspace*>(workspace)->fileManagerAnswered(
        sd_bus_message_is_method_error(answer, nullptr) == 0);
    return 0;
}

// Returns a path as a "file:" URI; escapes everything except letters, digits and "-._~/".
std::string fileUri(const std::string& path)
{
    constexpr std::string_view kPlain = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~/";
    std::string uri = "file://";
    for (const char c : path) {
        char escaped[4] = {c, '\0'};
        if (kPlain.find(c) == std::string_view::npos)
            std::snprintf(escaped, sizeof escaped, "%%%02X", static_cast<unsigned char>(c));
        uri += escaped;
    }
    return uri;
}

} // namespace

void DesktopWorkspace::selectFile(const std::string& folder)
{
    pendingFolder = folder;
    if (callFileManager(fileUri(folder)) < 0)
        fileManagerAnswered(false);
}

int DesktopWorkspace::callFileManager(const std::string& uri)
{
    MessagePtr message;
    int result = sd_bus_message_new_method_call(bus, Into(message), "org.freedesktop.FileManager1",
                                                "/org/freedesktop/FileManager1",
                                                "org.freedesktop.FileManager1", "ShowItems");
    if (result >= 0)
        result = sd_bus_message_append(message.get(), "ass", 1, uri.c_str(), "");
    return result < 0 ? result
                      : sd_bus_call_async(bus, Into(pendingCall), message.get(), onFileManagerAnswered, this,
                                          kReplyTimeout);
}

void DesktopWorkspace::fileManagerAnswered(bool shown)
{
    if (!shown && !run("/usr/bin/xdg-open", {pendingFolder}))
        log("no file manager to show the output folder");
}

} // namespace Kest::StatusNotifier
