// The application: owns the menu, the Backend and the controllers, to which it dispatches events.
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

/// Main thread only, except `queueMsgFromBackend`. The front end and the workspace outlive it.
class KestSettingsAppDelegate {
public:
    KestSettingsAppDelegate(FrontEnd& platform, Workspace& desktop, Settings::SystemPaths paths = {},
                            std::chrono::nanoseconds monitorPeriod = std::chrono::seconds(1),
                            AbortJobs::Abort abortOne = abortEncoder);
    virtual ~KestSettingsAppDelegate();
    KestSettingsAppDelegate(const KestSettingsAppDelegate&) = delete;
    KestSettingsAppDelegate& operator=(const KestSettingsAppDelegate&) = delete;

    // Start and end: each function is called once, in this order.
    /// Loads the menu, starts the Backend and shows all stored settings.
    void awakeFromNib();
    /// Returns 0, or an errno if `awakeFromNib` failed: then only the destructor may follow.
    int startError() const;
    /// Fills the bus menu, with "Main Bus" at least, with or without a host.
    void applicationDidFinishLaunching();
    /// Waits for running aborts as ~AbortJobs does, destroys the Backend with its threads, if there is one,
    /// and unloads the launch agent.
    void applicationWillTerminate();

    // From the front end.
    const MenuModel& menu() const { return model; }
    /// Returns the host's state as the menu shows it. The front end's `hostChanged` is called after a change.
    const Settings::HostState& hostState() const { return host; }
    /// Performs the item's action. Returns false if the id is unknown or the item is a separator, hidden,
    /// greyed or without an action.
    bool choose(ItemId id);
    /// Called before the submenu of an item is shown. Ignores an id without a submenu.
    void menuWillOpen(ItemId id);

    /// Sets the observer; null for none. It is destroyed when the application terminates, before the Backend.
    void setObserver(std::unique_ptr<MenuObserver> menuObserver) { observer = std::move(menuObserver); }

    // From the Backend.
    /// Returns true if the slot was empty: then `handleQueuedMsgFromBackend` must be run. Any thread.
    bool queueMsgFromBackend(std::int32_t number, std::int32_t type, const char* description);
    void handleQueuedMsgFromBackend();
    void receivedMsgFromBackend(std::int32_t number, std::int32_t type, const std::string& description);

    /// A hook for displaying notifications; does nothing by default.
    virtual void showNotification(const std::string& text);

private:
    friend void host_state_callback(void* context);
    friend void msg_from_backend_callback(void* context, std::int32_t number, std::int32_t type,
                                          const char* description);

    /// A batch of changes. The end of the outermost batch reports them to the front end.
    class ChangeBatch;
    /// The controllers that need the Backend; destroyed before it.
    struct Controllers {
        Controllers(const Outlets& outlets, Settings::Backend& backend, Workspace& workspace,
                    AbortJobs& aborts);
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
    void flushChanges();

    FrontEnd& frontEnd;
    Workspace& workspace;
    const Settings::SystemPaths systemPaths;
    const std::chrono::nanoseconds monitorPeriod;

    MenuModel model;
    Outlets outlets;
    MessageSlot slot;
    Settings::HostState host;
    std::atomic<bool> isHostJobPosted = false;
    int openBatches = 0;
    std::unique_ptr<Settings::Backend> mBackend;
    std::optional<Controllers> controllers;
    std::unique_ptr<MenuObserver> observer;
    AbortJobs aborts; // destroyed first: its jobs use `controllers`
};

/// The Backend's callback for a changed host: posts a job that reads its state. Any thread.
void host_state_callback(void* context);

/// The Backend's callback for messages: stores one and posts a job that handles it. Any thread; does nothing
/// if `context`, the delegate, is null.
void msg_from_backend_callback(void* context, std::int32_t number, std::int32_t type,
                               const char* description);

} // namespace Kest::App
