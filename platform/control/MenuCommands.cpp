#include "platform/control/MenuCommands.h"

#include "app/ItemPath.h"
#include "app/KestSettingsAppDelegate.h"
#include "log/Log.h"
#include "platform/control/ItemJson.h"

#include <utility>

namespace Kest::Control {
namespace {

std::string quoted(const std::string& path) { return "\"" + path + "\""; }

// Returns why an item cannot be chosen; empty if it can.
std::string refusal(const App::FoundItem& found, bool confirmed)
{
    if (found.item == nullptr)
        return found.error;
    if (found.item->hasSubmenu)
        return quoted(found.path) + " is a submenu; choose one of its items";
    if (!found.item->properties->enabled)
        return quoted(found.path) + " is greyed";
    if (found.item->properties->action == App::Action::abortEncoding && !confirmed)
        return quoted(found.path) + " deletes files; confirm with --yes, or \"yes\": true in a request";
    return {};
}

} // namespace

void MenuCommands::run(const Request& request, ClientId client)
{
    switch (request.command) {
    case Request::Command::menu:
        fillAllSubmenus();
        return outbox.add({client, menuReply(takeSnapshot(delegate.menu()))});
    case Request::Command::get:
        return get(request.path, client);
    case Request::Command::choose:
        return choose(request, client);
    case Request::Command::watch:
        ++watching;
        return outbox.add({client, doneReply(), true});
    }
}

// Opens all submenus, since some are filled when they open.
void MenuCommands::fillAllSubmenus()
{
    for (const auto id : submenuIdsBelow(takeSnapshot(delegate.menu())))
        delegate.menuWillOpen(id);
}

void MenuCommands::fillMenusContaining(App::ItemId id)
{
    const auto* item = delegate.menu().itemWithId(id);
    while (item != nullptr && (item = item->parentItem()) != nullptr)
        delegate.menuWillOpen(item->id());
}

// Finds an item after opening its menus and submenu, which may fill them; opens all menus if it is not found.
App::FoundItem MenuCommands::find(App::ItemSnapshot& menu, const std::string& path)
{
    menu = takeSnapshot(delegate.menu());
    const auto found = findByPath(menu, path);
    if (found.item == nullptr) {
        fillAllSubmenus();
    } else {
        if (found.item->hasSubmenu)
            delegate.menuWillOpen(found.item->id);
        fillMenusContaining(found.item->id);
    }
    menu = takeSnapshot(delegate.menu());
    return findByPath(menu, path);
}

void MenuCommands::get(const std::string& path, ClientId client)
{
    App::ItemSnapshot menu;
    const auto found = find(menu, path);
    outbox.add({client, found.item == nullptr ? errorReply(found.error, found.nearest)
                                              : itemReply(*found.item, found.path)});
}

void MenuCommands::choose(const Request& request, ClientId client)
{
    App::ItemSnapshot menu;
    const auto found = find(menu, request.path);
    if (const auto reason = refusal(found, request.confirmed); !reason.empty())
        return outbox.add({client, errorReply(reason, found.nearest)});
    perform(found, client);
}

void MenuCommands::perform(const App::FoundItem& found, ClientId client)
{
    const auto id = found.item->id;
    const bool isAbort = found.item->properties->action == App::Action::abortEncoding;
    const Lct::CollectedAnswers answers;
    if (!delegate.choose(id))
        return outbox.add({client, errorReply(quoted(found.path) + " cannot be chosen")});
    if (!answers.messages().empty())
        return outbox.add({client, errorReply(answers.messages().front())});
    if (isAbort) {
        if (const auto reason = abortProblem(id); !reason.empty())
            return outbox.add({client, errorReply(reason)});
        aborts.push_back({delegate.menu().itemWithId(id)->parentItem()->tag(), client});
        return;
    }
    fillMenusContaining(id);
    const auto now = takeSnapshot(delegate.menu(), id, 0);
    outbox.add({client, now ? itemReply(*now, found.path) : doneReply()});
}

std::string MenuCommands::abortProblem(App::ItemId id) const
{
    const auto* item = delegate.menu().itemWithId(id);
    if (item == nullptr)
        return "the encoding is no longer in the history";
    const auto& encoding = item->parentItem()->properties().encoding;
    return encoding && encoding->percent.value_or(0) >= Settings::kFinished ? "the encoding has just finished"
                                                                            : "";
}

void MenuCommands::menuChanged(const App::MenuChanges& changes)
{
    if (watching == 0)
        return;
    std::string lines;
    for (const auto& event : menuEvents(changes, delegate.menu()))
        lines += eventLine(event, delegate.menu());
    if (!lines.empty())
        outbox.add({kAllWatchers, std::move(lines)});
}

void MenuCommands::abortEnded(int pid, const std::string& failure)
{
    std::erase_if(aborts, [&](const RunningAbort& abort) {
        if (abort.pid != pid)
            return false;
        outbox.add({abort.client, failure.empty() ? doneReply() : errorReply(failure)});
        return true;
    });
}

} // namespace Kest::Control
