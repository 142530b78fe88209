#import "platform/appkit/AppKitFrontEnd.h"

#include "app/KestSettingsAppDelegate.h"
#include "platform/appkit/Boundary.h"
#import "platform/appkit/Logo.h"
#import "platform/appkit/MainThread.h"
#import "platform/appkit/StatusItem.h"
#include "platform/appkit/Text.h"

#include <utility>

namespace Kest::AppKit {
namespace {

struct Job {
    std::function<void()> work;
    std::shared_ptr<const bool> ended;
};

void runJob(void* posted)
{
    const std::unique_ptr<Job> job(static_cast<Job*>(posted));
    @autoreleasepool { // the loop's own one may be drained only with the next event
        if (!*job->ended)
            stopExceptions("a job", job->work);
    }
}

} // namespace

AppKitFrontEnd::AppKitFrontEnd()
    : bridge([[KestMenuBridge alloc] initWithListener:this]), mirror(App::about().name, bridge),
      ended(std::make_shared<bool>(false))
{}

AppKitFrontEnd::~AppKitFrontEnd()
{
    *ended = true;
    [bridge disconnect];
    if (statusItem != nil)
        removeStatusItem(statusItem);
    [bridge autorelease]; // the items let go of it first
}

void AppKitFrontEnd::showStatusItem(const std::string& imageName)
{
    statusItem = AppKit::showStatusItem(statusMenu(), logoNamed(toNSString(imageName)));
}

void AppKitFrontEnd::post(std::function<void()> job)
{
    callOnMainThread(runJob, std::make_unique<Job>(Job{std::move(job), ended}).release());
}

void AppKitFrontEnd::menuChanged(const App::MenuChanges&)
{
    if (delegate != nullptr)
        mirror.show(takeSnapshot(delegate->menu()));
}

// Later, so that the choice that asks for it comes to its end first.
void AppKitFrontEnd::quit()
{
    [NSApp performSelector:@selector(terminate:) withObject:nil afterDelay:0 inModes:workingModes()];
}

void AppKitFrontEnd::itemChosen(App::ItemId id)
{
    if (delegate != nullptr)
        delegate->choose(id);
}

void AppKitFrontEnd::menuNeedsUpdate(App::ItemId id)
{
    if (delegate == nullptr || mirror.isChanging())
        return;
    mirror.menuNeedsUpdate(id);
    delegate->menuWillOpen(id);
}

// AppKit sends the action of the chosen item after this, and before any job.
void AppKitFrontEnd::menuDidClose(App::ItemId id)
{
    mirror.menuClosed(id);
    post([this] { mirror.applyDeferredShapes(); });
}

} // namespace Kest::AppKit
