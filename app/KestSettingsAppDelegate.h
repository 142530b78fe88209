// The application: owns the menu, the Backend and the controllers, and dispatches events to the controllers.
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

/// Main thread only, except `queueMsgFromBackend`. `platform` and `desktop` must outlive this object.
/// `monitorPeriod` is the pause between two checks of the host.
class KestSettingsAppDelegate {
public:
    KestSettingsAppDelegate(FrontEnd& platform, Workspace& desktop, Settings::SystemPaths paths = {},
                            std::chrono::nanoseconds monitorPeriod = std::chrono::seconds(1),
                            AbortJobs::Abort abortOne = abortEncoder);
    virtual ~KestSettingsAppDelegate();
    KestSettingsAppDelegate(const KestSettingsAppDelegate&) = delete;
    KestSettingsAppDelegate& operator=(const KestSettingsAppDelegate&) = delete;

    // Start and end. Call these four functions once each, in this order.
    /// Fills the menu, calls the front end's `showStatusItem`, starts the Backend, and shows the stored
    /// settings. Writes all settings except Solo Mode and the facility to the Backend, as if the user had
    /// chosen them. So a running host gets them, and the settings file gets the defaults that it lacks.
    void awakeFromNib();
    /// Returns 0, or an errno if the Backend could not start in `awakeFromNib`. After a failure, only the
    /// destructor may be called.
    int startError() const;
    /// Updates `hostState`, fills the bus menu, which always contains "Main Bus", and posts the job that
    /// begins to check the host.
    void applicationDidFinishLaunching();
    /// Destroys the observer, waits up to 1.2 seconds for running aborts, destroys the Backend with its
    /// threads, and calls `ServiceActions::unloadLaunchAgent`.
    void applicationWillTerminate();

    // For the front end.
    const MenuModel& menu() const { return model; }
    /// Returns the host's state. After each change, this class calls the front end's `hostChanged`.
    const Settings::HostState& hostState() const { return host; }
    /// Performs the action of the item with this id. Returns false if there is no such item, or if the item
    /// is hidden, greyed, a separator or without an action. Also returns false before `awakeFromNib` and
    /// after `applicationWillTerminate`.
    bool choose(ItemId id);
    /// Must be called before the submenu of the item with this id is shown, because some submenus are filled
    /// at that time. Does nothing if there is no such submenu.
    void menuWillOpen(ItemId id);

    /// Sets the observer; null means none. `applicationWillTerminate` destroys it before the Backend.
    void setObserver(std::unique_ptr<MenuObserver> menuObserver) { observer = std::move(menuObserver); }

    // For the Backend.
    /// Stores a message in the `MessageSlot`. The message replaces one that is not handled yet. Returns true
    /// if the slot was empty. In that case the caller must post a job that calls
    /// `handleQueuedMsgFromBackend`. Any thread.
    bool queueMsgFromBackend(std::int32_t number, std::int32_t type, const char* description);
    /// Handles the message in the slot, and those that arrive meanwhile, until the slot is empty.
    void handleQueuedMsgFromBackend();
    /// Shows the encodings that were reported to the Backend since the previous call, then handles one
    /// message. If `type` is 0, `number` is a status number. If `type` is positive, it is the process id of
    /// an encoder, and `number` is its percentage; a negative `number` means that the encoding has failed. A
    /// message with a negative `type` is ignored.
    void receivedMsgFromBackend(std::int32_t number, std::int32_t type, const std::string& description);

    /// Called with the text of a status message for the user. Does nothing by default.
    virtual void showNotification(const std::string& text);

private:
    friend void host_state_callback(void* context);
    friend void msg_from_backend_callback(void* context, std::int32_t number, std::int32_t type,
                                          const char* description);

    /// Exists while an event is handled. The destructor of the outermost batch reports the changes of the
    /// menu to the front end and the observer.
    class ChangeBatch;
    /// The controllers, which use the Backend and are destroyed before it.
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
    void handleSkipped(const SkippedMessages& skipped);
    void showReportedEncodings();
    void updateHostState();
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
    AbortJobs aborts; // destroyed first, because its jobs use `controllers`
};

/// Posts a job that updates the delegate's `hostState`, unless one is already posted. The Backend calls this
/// function when the host's state has changed. `context` is the delegate, not null. Any thread.
void host_state_callback(void* context);

/// Stores a message of the Backend in the delegate's slot. If the slot was empty, posts a job that handles
/// the message. `context` is the delegate; does nothing if `context` is null. Any thread.
void msg_from_backend_callback(void* context, std::int32_t number, std::int32_t type,
                               const char* description);

} // namespace Kest::App
