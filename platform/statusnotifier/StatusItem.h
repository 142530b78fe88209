// The icon in the panel: org.kde.StatusNotifierItem, and its registration with the panel's watcher.
#pragma once

#include "platform/statusnotifier/Bus.h"

#include <functional>
#include <string>
#include <string_view>

namespace Kest::StatusNotifier {

/// Registered by path: GNOME's extension loses some items that are registered by bus name. Cinnamon also
/// opens the menu of an item below this folder with the left button.
constexpr char kItemPath[] = "/org/ayatana/NotificationItem/kest_settings";

/// Main thread only. The bus outlives it. Registers with the current watcher, with each new one, and again
/// when a watcher removes the item: it appears in panels that start later or restart.
class StatusItem {
public:
    /// Called from a callback of the bus.
    struct Callbacks {
        std::function<void()> noTray;         // once, if there is no watcher at the start
        std::function<void()> registering;    // a panel is about to read the item and its whole menu
        std::function<void(int)> notAccepted; // the bus refused the item; a negative errno
    };
    /// Does not wait: the item appears when the bus has replied.
    StatusItem(sd_bus* onBus, std::string_view themePath, Callbacks reports);
    StatusItem(const StatusItem&) = delete;
    StatusItem& operator=(const StatusItem&) = delete;

    /// Returns a negative errno if the item could not be put on the bus.
    int failure() const { return exportResult; }

    // Called by sd-bus.
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
    int registrationsLeft = 0; // with the current watcher
    int exportResult = 0;
};

} // namespace Kest::StatusNotifier
