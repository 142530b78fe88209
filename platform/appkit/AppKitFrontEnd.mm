#import "platform/appkit/AppKitFrontEnd.h"

#include "app/KestSettingsAppDelegate.h"
#include "platform/appkit/Boundary.h"
#import "platform/appkit/Logo.h"
#import "platform/appkit/System.h"
#include "platform/appkit/Text.h"

#include <utility>

namespace Kest::AppKit {

AppKitFrontEnd::AppKitFrontEnd()
    : bridge([[KestMenuBridge alloc] initWithListener:this]), wakeUps(jobs.wakeUpDescriptor(), [this] {
          jobs.dispatchWakeUps();
          if (jobs.isQuitting())
              quit();
      })
{}

AppKitFrontEnd::~AppKitFrontEnd()
{
    [bridge disconnect];
    if (statusItem != nil)
        removeStatusItem(statusItem);
    [bridge autorelease]; // after the items, which refer to it
}

void AppKitFrontEnd::setApplication(App::KestSettingsAppDelegate& application)
{
    delegate = &application;
    mirror.emplace(application.menu(), App::about().name, bridge);
}

void AppKitFrontEnd::showStatusItem(const std::string& imageName)
{
    statusItem = AppKit::showStatusItem(statusMenu(), logoNamed(toNSString(imageName)));
}

void AppKitFrontEnd::post(std::function<void()> job)
{
    jobs.post([job = std::move(job)] { stopExceptions("a job", job); });
}

// Delayed, so that the choice that requested it is completed first.
void AppKitFrontEnd::quit()
{
    [NSApp performSelector:@selector(terminate:) withObject:nil afterDelay:0 inModes:workingModes()];
}

void AppKitFrontEnd::itemChosen(App::ItemId id) { delegate->choose(id); }

void AppKitFrontEnd::menuNeedsUpdate(App::ItemId id)
{
    if (mirror->isChanging())
        return;
    mirror->menuNeedsUpdate(id);
    delegate->menuWillOpen(id);
}

// AppKit sends the action of the chosen item after this, and before any job.
void AppKitFrontEnd::menuDidClose(App::ItemId id)
{
    mirror->menuClosed(id);
    post([this] { mirror->applyDeferredLayouts(); });
}

} // namespace Kest::AppKit
