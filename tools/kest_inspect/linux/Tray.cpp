// The desktop's tray, queried on the session bus.
#include "tools/kest_inspect/SystemLook.h"
#include "tools/kest_inspect/linux/SessionBus.h"

#include <cerrno>
#include <cstring>

namespace KestInspect {
namespace {

constexpr char kTray[] = "tray";
constexpr char kWatcher[] = "org.kde.StatusNotifierWatcher";
constexpr std::chrono::seconds kPatience(2); // for all that is asked of the bus
constexpr char kInTerminal[] = "on a desktop, add a tray or the AppIndicator extension to its panel; "
                               "kest-settings-terminal shows the same menu";

// As over ssh, where all may be well.
Finding noBus(int failure)
{
    if (failure == -ETIMEDOUT)
        return wrong(kTray, "the session bus does not answer", "log in to the desktop again");
    const auto why = failure == -ENOMEDIUM ? "" : std::string(": ") + std::strerror(-failure);
    return note(kTray, "no session bus here" + why,
                "run it in a terminal of the desktop; kest-settings-terminal needs no bus");
}

} // namespace

std::optional<Finding> checkTray()
{
    SessionBus bus(kPatience);
    const int owned = bus.hasOwner(kWatcher);
    if (owned < 0)
        return noBus(owned);
    if (owned == 0)
        return note(kTray, "none on this desktop", kInTerminal);
    // A watcher without a panel keeps items that are not displayed. Without an answer it counts as displayed.
    if (bus.property(kWatcher, "/StatusNotifierWatcher", "IsStatusNotifierHostRegistered") == 0)
        return note(kTray, "one that no panel shows", kInTerminal);
    return ok(kTray, "there");
}

} // namespace KestInspect
