#include "app/KestSettingsAppDelegate.h"

#include "tables/StatusMessages.h"

namespace Kest::App {

class KestSettingsAppDelegate::ChangeBatch {
public:
    explicit ChangeBatch(KestSettingsAppDelegate& ofDelegate) : delegate(ofDelegate)
    {
        ++delegate.openBatches;
    }
    ~ChangeBatch()
    {
        if (--delegate.openBatches == 0)
            delegate.flushChanges();
    }
    ChangeBatch(const ChangeBatch&) = delete;
    ChangeBatch& operator=(const ChangeBatch&) = delete;

private:
    KestSettingsAppDelegate& delegate;
};

void KestSettingsAppDelegate::flushChanges()
{
    if (const auto changes = model.takeChanges(); !changes.isEmpty()) {
        frontEnd.menuChanged(changes);
        if (observer != nullptr)
            observer->menuChanged(changes);
    }
}

KestSettingsAppDelegate::Controllers::Controllers(const Outlets& outlets, Settings::Backend& backend,
                                                  Workspace& workspace, AbortJobs& aborts)
    : settings(outlets, backend), facilities(outlets, backend), buses(outlets, backend),
      encodings(outlets, backend, workspace, aborts), services(workspace, backend.paths())
{}

KestSettingsAppDelegate::KestSettingsAppDelegate(FrontEnd& platform, Workspace& desktop,
                                                 Settings::SystemPaths paths, std::chrono::nanoseconds period,
                                                 AbortJobs::Abort abortOne)
    : frontEnd(platform), workspace(desktop), systemPaths(std::move(paths)), monitorPeriod(period),
      aborts(
          frontEnd,
          [this](const Settings::ProcessIdentity& process, const std::string& failure) {
              abortEnded(process, failure);
          },
          std::move(abortOne))
{}

KestSettingsAppDelegate::~KestSettingsAppDelegate() = default;

void KestSettingsAppDelegate::awakeFromNib()
{
    const ChangeBatch batch(*this);
    outlets = loadInterface(model, workspace.hasAboutPanel());
    frontEnd.showStatusItem("Kestronics_Logo_19px");

    mBackend = std::make_unique<Settings::Backend>(systemPaths, monitorPeriod);
    mBackend->messageContext = this; // before the callback, which drops messages without a context
    mBackend->messageCallback = msg_from_backend_callback;
    mBackend->hostStateCallback = host_state_callback;

    controllers.emplace(outlets, *mBackend, workspace, aborts);
    const Settings::Backend::CombinedSaveLogScope scope(*mBackend);
    controllers->settings.showStoredChoices();
    controllers->buses.updateKestBusMenu();
    controllers->settings.showStoredSpeakerConfig();

    outlets.mFacilityMenuItem->setHidden(true);
    outlets.mFacilityMenuItem2->setHidden(true);
}

// Fills the bus menu, since no message about the buses arrives without a host. The monitor begins in the main
// loop, after everything that the start writes into the session.
void KestSettingsAppDelegate::applicationDidFinishLaunching()
{
    updateHostState(); // the Backend's constructor may have refused the host
    const ChangeBatch batch(*this);
    if (controllers)
        controllers->buses.refreshQuietly();
    frontEnd.post([this] {
        if (mBackend != nullptr)
            mBackend->beginMonitoring();
    });
}

void KestSettingsAppDelegate::applicationWillTerminate()
{
    observer.reset();
    if (mBackend != nullptr) {
        aborts.end();
        controllers.reset();
        mBackend.reset();
        host = {};
    }
    ServiceActions(workspace, systemPaths).unloadLaunchAgent();
}

int KestSettingsAppDelegate::startError() const { return mBackend == nullptr ? 0 : mBackend->startError(); }

bool KestSettingsAppDelegate::choose(ItemId id)
{
    const ChangeBatch batch(*this);
    auto* item = model.itemWithId(id);
    if (item == nullptr || !controllers)
        return false;
    const auto& properties = item->properties();
    if (!properties.enabled || properties.hidden || properties.separator || properties.action == Action::none)
        return false;
    perform(properties.action, item);
    return true;
}

void KestSettingsAppDelegate::menuWillOpen(ItemId id)
{
    const ChangeBatch batch(*this);
    const auto* item = model.itemWithId(id);
    if (item != nullptr && item->submenu() != nullptr && controllers)
        controllers->facilities.menuWillOpen(*item->submenu());
}

void KestSettingsAppDelegate::perform(Action action, Sender sender)
{
    // clang-format off
    switch (action) {
    case Action::none: return;
    case Action::setSoloModeXOR: return controllers->settings.setSoloModeXOR(sender);
    case Action::setSoloModeLatch: return controllers->settings.setSoloModeLatch(sender);
    case Action::setHdxAuxTrackDelay: return controllers->settings.setHdxAuxTrackDelay(sender);
    case Action::setSpeakerConfig: return controllers->settings.setSpeakerConfig(sender);
    case Action::setFacility: return controllers->facilities.setFacility(sender);
    case Action::toggleSetting: return controllers->settings.toggleSetting(sender);
    case Action::setDAWType: return controllers->settings.setDAWType(sender);
    case Action::setDefaultKestBus: return controllers->buses.setDefaultKestBus(sender);
    case Action::encShowInFinder: return controllers->encodings.encShowInFinder(sender);
    case Action::abortEncoding: return controllers->encodings.abortEncoding(sender);
    case Action::clearEncodingHistory: return controllers->encodings.clearEncodingHistory(sender);
    case Action::restartService: return controllers->services.restartService();
    case Action::switchTo32: return controllers->services.switchTo32();
    case Action::switchTo64: return controllers->services.switchTo64();
    case Action::showAboutDialog: return controllers->services.showAboutDialog();
    case Action::openUninstaller: return controllers->services.openUninstaller();
    case Action::terminate: return frontEnd.quit();
    }
    // clang-format on
}

bool KestSettingsAppDelegate::queueMsgFromBackend(std::int32_t number, std::int32_t type,
                                                  const char* description)
{
    return slot.queueMsgFromBackend(number, type, description);
}

void KestSettingsAppDelegate::handleQueuedMsgFromBackend()
{
    const ChangeBatch batch(*this);
    while (const auto message = slot.take()) {
        handleSkipped(message->skipped);
        receivedMsgFromBackend(message->number, message->type, message->description);
        if (model.hasManyChanges()) // in a flood this loop does not end
            flushChanges();
    }
}

// Handles status messages that messages of another kind replaced in the slot.
void KestSettingsAppDelegate::handleSkipped(const SkippedMessages& skipped)
{
    if (!controllers)
        return;
    if (skipped.status)
        receivedStatusMessage(*skipped.status);
    if (skipped.busList)
        controllers->buses.printAndRefreshBuses();
}

void KestSettingsAppDelegate::showReportedEncodings()
{
    while (controllers->encodings.showReported())
        if (model.hasManyChanges())
            flushChanges();
}

void KestSettingsAppDelegate::abortEnded(const Settings::ProcessIdentity& process, const std::string& failure)
{
    {
        const ChangeBatch batch(*this);
        if (controllers)
            controllers->encodings.abortEnded(process, failure);
    }
    if (observer != nullptr)
        observer->abortEnded(process.pid, failure);
}

void KestSettingsAppDelegate::receivedMsgFromBackend(std::int32_t number, std::int32_t type,
                                                     const std::string& description)
{
    const ChangeBatch batch(*this);
    if (!controllers)
        return;
    showReportedEncodings(); // includes encodings whose messages were replaced
    if (type > 0)
        controllers->encodings.showUnrecorded(number, type, description);
    else if (type == 0)
        receivedStatusMessage(number);
}

void KestSettingsAppDelegate::receivedStatusMessage(std::int32_t number)
{
    if (number == Settings::kMsgBusListChanged)
        controllers->buses.printAndRefreshBuses();
    else if (const auto* message = Settings::statusMessage(number); message != nullptr && message->isShown)
        showNotification(message->text);
}

void KestSettingsAppDelegate::showNotification(const std::string&) {}

// Items that depend on the host must be updated here, before the front end's `hostChanged`.
void KestSettingsAppDelegate::updateHostState()
{
    isHostJobPosted = false;
    const auto now = mBackend == nullptr ? Settings::HostState() : mBackend->hostState();
    if (now == host)
        return;
    {
        const ChangeBatch batch(*this);
        host = now;
    }
    frontEnd.hostChanged();
}

void host_state_callback(void* context)
{
    auto& delegate = *static_cast<KestSettingsAppDelegate*>(context);
    if (!delegate.isHostJobPosted.exchange(true))
        delegate.frontEnd.post([&delegate] { delegate.updateHostState(); });
}

void msg_from_backend_callback(void* context, std::int32_t number, std::int32_t type, const char* description)
{
    auto* delegate = static_cast<KestSettingsAppDelegate*>(context);
    if (delegate != nullptr && delegate->queueMsgFromBackend(number, type, description))
        delegate->frontEnd.post([delegate] { delegate->handleQueuedMsgFromBackend(); });
}

} // namespace Kest::App
