// The icon in the panel: the D-Bus object org.kde.StatusNotifierItem, and its registration with the watcher,
// which is the desktop's service org.kde.StatusNotifierWatcher.
#pragma once

#include "platform/statusnotifier/Bus.h"

#include <functional>
#include <string>
#include <string_view>

namespace Kest::StatusNotifier {

/// The object path of the item. The item is registered by this path, because GNOME's extension loses some
/// items that are registered by bus name. The path is below /org/ayatana/NotificationItem, because Cinnamon
/// opens the menu of such an item with the left button too.
constexpr char kItemPath[] = "/org/ayatana/NotificationItem/kest_settings";

/// Registers the item with the current watcher and with each later one, so that the item appears in panels
/// that start or restart later. If a watcher removes the item, registers it again. Registers the item with
/// one watcher at most 10 times in total. Main thread only. The bus must outlive this object.
class StatusItem {
public:
    /// Called on the main thread for events of the bus; `registering` also in the constructor.
    struct Callbacks {
        std::function<void()> noTray;      // the first registration has failed, so there is no tray
        std::function<void()> registering; // a panel is about to read the item and its whole menu
        std::function<void(int)> refused;  // the bus has refused the item; the argument is a negative errno
    };
    /// Exports the item and registers it, without waiting for replies. `themePath` is the folder in which
    /// panels search for the icon.
    StatusItem(sd_bus* onBus, std::string_view themePath, Callbacks reports);
    StatusItem(const StatusItem&) = delete;
    StatusItem& operator=(const StatusItem&) = delete;

    /// Returns a negative errno if the item could not be exported; otherwise 0 or more.
    int failure() const { return exportResult; }

    // Called by sd-bus for the item's properties, for signals and for replies.
    int getProperty(const std::string& property, sd_bus_message* reply) const;
    void watcherOwnerChanged(const std::string& owner);
    void unregistered(std::string_view removedItem);
    void registrationAnswered(bool accepted);
    void setUpAnswered(int result);

private:
    int claimName();
    int watch(const char* match, sd_bus_message_handler_t handler, SlotPtr& slot);
    int registerItem();
    bool isThisItem(std::string_view registeredName) const;
    bool isLost() const;

    sd_bus* bus;
    std::string iconThemePath;
    Callbacks callbacks;
    std::string name;
    SlotPtr object;
    SlotPtr nameRequest;
    SlotPtr watcherMatch;
    SlotPtr unregisteredMatch;
    SlotPtr registration;
    int registrationsLeft = 0; // attempts with the current watcher
    int exportResult = 0;
};

} // namespace Kest::StatusNotifier
