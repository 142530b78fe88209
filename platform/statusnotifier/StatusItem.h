// The handle in the panel: org.kde.StatusNotifierItem, and its registration with whatever panel there is.
#pragma once

#include "platform/statusnotifier/Bus.h"

#include <functional>
#include <string>

namespace Kest::StatusNotifier {

constexpr char kItemPath[] = "/StatusNotifierItem";

/// Main thread only. The bus outlives it. Registers with the watcher that there is, and again with each new
/// one, so that the item appears when a panel starts late and comes back when it restarts.
class StatusItem {
public:
    /// What the item reports, from a callback of the bus.
    struct Callbacks {
        std::function<void()> noTray;         // once, if there is no watcher at the start
        std::function<void(int)> notAccepted; // the bus refused the item; a negative errno
    };
    /// Waits for nothing: the item appears when the bus has answered.
    StatusItem(sd_bus* onBus, std::string_view themePath, Callbacks reports);
    StatusItem(const StatusItem&) = delete;
    StatusItem& operator=(const StatusItem&) = delete;

    /// Negative when the item could not be put on the bus (an errno).
    int failure() const { return exportResult; }

    // Called by sd-bus.
    int getText(const std::string& property, sd_bus_message* reply) const;
    void watcherOwnerChanged(const std::string& owner);
    void registrationAnswered(bool accepted);
    void setUpAnswered(int result);

private:
    int claimName();
    int registerItem();
    bool isLost() const;

    sd_bus* bus;
    std::string iconThemePath;
    Callbacks callbacks;
    std::string name;
    SlotPtr object;
    SlotPtr nameRequest;
    SlotPtr watcherMatch;
    SlotPtr registration;
    int exportResult = 0;
};

} // namespace Kest::StatusNotifier
