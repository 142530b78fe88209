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
    /// `onNoTray` is called once if there is no watcher at the start.
    StatusItem(sd_bus* bus, std::string iconThemePath, std::function<void()> onNoTray);
    StatusItem(const StatusItem&) = delete;
    StatusItem& operator=(const StatusItem&) = delete;

    /// Negative when the item could not be put on the bus (an errno).
    int failure() const { return exportResult; }

    // Called by sd-bus.
    int getText(const std::string& property, sd_bus_message* reply) const;
    void watcherOwnerChanged(const std::string& owner);
    void registrationAnswered(bool accepted);

private:
    void registerItem();

    sd_bus* bus;
    std::string iconThemePath;
    std::function<void()> noTray;
    std::string name;
    SlotPtr object;
    SlotPtr watcherMatch;
    SlotPtr registration;
    int exportResult = 0;
};

} // namespace Kest::StatusNotifier
