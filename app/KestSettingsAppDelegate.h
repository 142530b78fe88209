// The application: owns the menu, the Backend and the parts that work on them, and hands each event to its
// part.
#pragma once

#include "app/AbortJobs.h"
#include "app/DefaultBusMenu.h"
#include "app/EncodingHistoryMenu.h"
#include "app/FacilityMenus.h"
#include "app/FrontEnd.h"
#include "app/InterfaceDescription.h"
#include "app/MenuModel.h"
#include "app/MenuObserver.h"
#include "app/MessageSlot.h"
#include "app/Sender.h"
#include "app/ServiceActions.h"
#include "app/SettingsMenus.h"
#include "backend/Backend.h"

#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace Kest::App {

/// Main thread only, but for `queueMsgFromBackend`. The front end and the workspace outlive it.
class KestSettingsAppDelegate {
public:
    KestSettingsAppDelegate(FrontEnd& platform, Workspace& desktop, Settings::SystemPaths paths = {},
                            std::chrono::nanoseconds monitorPeriod = std::chrono::seconds(1),
                            AbortJobs::Abort abortOne = abortEncoder);
    virtual ~KestSettingsAppDelegate();
    KestSettingsAppDelegate(const KestSettingsAppDelegate&) = delete;
    KestSettingsAppDelegate& operator=(const KestSettingsAppDelegate&) = delete;

    // Life, in this order, once each.
    /// Loads the menu, starts the Backend and shows everything that is stored.
    void awakeFromNib();
    /// 0, or the system's error number after an `awakeFromNib` that failed: then only the destructor may
    /// follow.
    int startError() const;
    /// Fills the bus menu, with "Main Bus" at least, whether or not there is a host yet.
    void applicationDidFinishLaunching();
    /// Waits for running aborts as ~AbortJobs does, ends the Backend with its threads, if there is one, and
    /// unloads the launch agent.
    void applicationWillTerminate();

    // From the front end.
    const MenuModel& menu() const { return model; }
    /// The host as the menu shows it; the front end's `hostChanged` is called when it has changed.
    const Settings::HostState& hostState() const { return host; }
    /// Does what the item is for. False when it is unknown, a separator, hidden, greyed or for nothing.
    bool choose(ItemId id);
    /// The submenu of an item is about to be looked at. Ignores what is no submenu.
    void menuWillOpen(ItemId id);

    /// The observer lives until the application terminates, and ends before the Backend. Null for none.
    void setObserver(std::unique_ptr<MenuObserver> menuObserver) { observer = std::move(menuObserver); }

    // From the Backend.
    /// Any thread. True when the slot was empty, and `handleQueuedMsgFromBackend` must be run.
    bool queueMsgFromBackend(std::int32_t number, std::int32_t type, const char* description);
    void handleQueuedMsgFromBackend();
    void receivedMsgFromBackend(std::int32_t number, std::int32_t type, const std::string& description);

    /// The hook for a later display of notifications; shows nothing.
    virtual void showNotification(const std::string& text);

private:
    friend void host_state_callback(void* context);
    friend void msg_from_backend_callback(void* context, std::int32_t number, std::int32_t type,
                                          const char* description);

    /// Everything that happens within one job of the main thread; at its end the front end is told once.
    class Job;
    /// The parts that need the Backend; they live as long as it does.
    struct Parts {
        Parts(const Outlets& outlets, Settings::Backend& backend, Workspace& workspace, AbortJobs& aborts);
        SettingsMenus settings;
        FacilityMenus facilities;
        DefaultBusMenu buses;
        EncodingHistoryMenu encodings;
        ServiceActions services;
    };

    void perform(Action action, Sender sender);
    void receivedStatusMessage(std::int32_t number);
    void catchUp(const SkippedMessages& skipped);
    void showReportedEncodings();
    void takeHostState();
    void abortEnded(const Settings::ProcessIdentity& process, const std::string& failure);
    void tellChanges();

    FrontEnd& frontEnd;
    Workspace& workspace;
    const Settings::SystemPaths systemPaths;
    const std::chrono::nanoseconds monitorPeriod;

    MenuModel model;
    Outlets outlets;
    MessageSlot slot;
    Settings::HostState host;
    std::atomic<bool> isHostJobPosted = false;
    int openJobs = 0;
    std::unique_ptr<Settings::Backend> mBackend;
    std::optional<Parts> parts;
    std::unique_ptr<MenuObserver> observer;
    AbortJobs aborts; // ends first: its jobs reach the parts
};

/// The Backend's callback for a changed host: has its state taken on the main thread. Any thread.
void host_state_callback(void* context);

/// The Backend's callback: keeps the message and has it handled on the main thread. Any thread; does nothing
/// when `context`, the delegate, is null.
void msg_from_backend_callback(void* context, std::int32_t number, std::int32_t type,
                               const char* description);

} // namespace Kest::App
