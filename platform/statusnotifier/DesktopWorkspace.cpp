#include "platform/statusnotifier/DesktopWorkspace.h"

#include <cstdio>
#include <string_view>

namespace Kest::StatusNotifier {
namespace {

int onFileManagerAnswered(sd_bus_message* answer, void* workspace, sd_bus_error*)
{
    static_cast<DesktopWorkspace*>(workspace)->fileManagerAnswered(
        sd_bus_message_is_method_error(answer, nullptr) == 0);
    return 0;
}

// A path as a "file:" address; everything but letters, digits and "-._~/" is escaped.
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
    const auto uri = fileUri(folder);
    sd_bus_slot* call = nullptr;
    const int asked = sd_bus_call_method_async(
        bus, &call, "org.freedesktop.FileManager1", "/org/freedesktop/FileManager1",
        "org.freedesktop.FileManager1", "ShowItems", onFileManagerAnswered, this, "ass", 1, uri.c_str(), "");
    pendingCall.reset(call);
    if (asked < 0)
        fileManagerAnswered(false);
}

void DesktopWorkspace::fileManagerAnswered(bool shown)
{
    if (!shown)
        (void)run("/usr/bin/xdg-open", {pendingFolder});
}

} // namespace Kest::StatusNotifier
