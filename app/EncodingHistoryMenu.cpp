#include "app/EncodingHistoryMenu.h"

#include "app/MessageSlot.h"
#include "app/OutputFolder.h"
#include "backend/Backend.h"
#include "log/Log.h"

#include <vector>

namespace Kest::App {
namespace {

constexpr int kFixedItems = 2;
constexpr int kFinished = 100;   // per cent
constexpr int kShortestName = 5; // characters
constexpr int kTagCharacters = 4;
constexpr std::size_t kForgottenAtOnce = 100;

// Finished, or failed.
bool isOver(const MenuItem& entry)
{
    const auto* abort = entry.submenu()->itemWithTag(kAbortTag);
    return entry.properties().view->percentage.empty() || (abort != nullptr && !abort->properties().enabled);
}

void logRefusal(int pid, const char* what)
{
    Lct::Log(Lct::eLogError, "abort", "encoding %d: %s", pid, what);
}

} // namespace

std::string encodingTitle(std::int32_t percentage, const std::string& description)
{
    auto title = juce::String::fromUTF8(description.c_str());
    const int length = title.length();
    if (length < kShortestName)
        title.clear();
    else if (title[length - kTagCharacters] == '_')
        title = title.dropLastCharacters(kTagCharacters);
    if (percentage < 0)
        title += " - Failed";
    return title.toStdString();
}

void EncodingHistoryMenu::receivedMsgFromBackend(std::int32_t number, std::int32_t pid,
                                                 const std::string& description)
{
    const auto title = encodingTitle(number, description);
    auto& entry = entryFor(pid, title);
    entry.setView({title, number < 0 ? std::string() : std::to_string(number) + "%"});
    // A failed encoder may still run, so it can still be aborted.
    if (auto* abort = entry.submenu()->itemWithTag(kAbortTag))
        abort->setEnabled(number < kFinished);
    setClearEncodingHistoryEnabled();
}

void EncodingHistoryMenu::showLatest(std::int32_t pid, bool hasFailed)
{
    const auto status = backend.getEncodingStatus(pid);
    if (status.pid == pid)
        receivedMsgFromBackend(hasFailed ? -1 : status.percentage, pid, descriptionText(status.name.c_str()));
}

MenuItem& EncodingHistoryMenu::entryFor(std::int32_t pid, const std::string& title)
{
    if (const auto known = entries.find(pid); known != entries.end())
        return *known->second;
    makeRoom();
    auto& entry = outlets.mEncodingProgressMenu->insertItem(
        std::make_unique<MenuItem>(ItemProperties{.title = title, .tag = pid, .view = {}}),
        getEncodingHistoryLength());
    entry.setSubmenu(outlets.mEncodingSubMenu->copy());
    entries.emplace(pid, &entry);
    return entry;
}

void EncodingHistoryMenu::makeRoom()
{
    const auto& menu = outlets.mEncodingProgressMenu->itemArray();
    if (getEncodingHistoryLength() < kFixedItems + kMostEncodings)
        return;
    std::vector<const MenuItem*> oldest;
    for (const bool over : {true, false})
        for (auto item = menu.begin() + kFixedItems; item != menu.end() && oldest.size() < kForgottenAtOnce;
             ++item)
            if (isOver(**item) == over)
                oldest.push_back(item->get());
    for (const auto* entry : oldest)
        remove(*entry);
}

std::unique_ptr<MenuItem> EncodingHistoryMenu::remove(const MenuItem& entry)
{
    entries.erase(entry.tag());
    return outlets.mEncodingProgressMenu->removeItem(entry);
}

void EncodingHistoryMenu::encShowInFinder(Sender sender)
{
    const auto* entry = sender.menuItem() == nullptr ? nullptr : sender.menuItem()->parentItem();
    if (entry == nullptr)
        return;
    const auto status = backend.getEncodingStatus(entry->tag());
    if (status.pid != entry->tag())
        return;
    const auto slash = status.path.rfind('/');
    if (slash != std::string::npos) // the folder itself, selected where it is, not the file
        workspace.selectFile(slash == 0 ? "/" : status.path.substr(0, slash));
}

void EncodingHistoryMenu::stopEncoding(int pid)
{
    if (backend.getEncodingStatus(pid).pid != pid)
        return;
    const auto command = killCommand(pid);
    if (command.empty())
        logRefusal(pid, "such a process is never killed");
    else
        workspace.runShellCommand(command);
}

void EncodingHistoryMenu::deleteEncoding(int pid)
{
    const auto status = backend.getEncodingStatus(pid);
    if (status.pid != pid)
        return;
    const auto [folder, refusal] = folderToRemove(status.path, homeFolders());
    if (refusal.empty())
        workspace.runShellCommand(removeCommand(folder));
    else
        logRefusal(pid, ("output not removed: " + refusal).c_str());
}

void EncodingHistoryMenu::abortEncoding(Sender sender)
{
    const auto* entry = sender.menuItem() == nullptr ? nullptr : sender.menuItem()->parentItem();
    if (entry == nullptr)
        return;
    stopEncoding(entry->tag());
    deleteEncoding(entry->tag());
    // Kept until the end: the sender is a part of it.
    const auto removed = remove(*entry);
    setClearEncodingHistoryEnabled();
}

void EncodingHistoryMenu::clearEncodingHistory(Sender)
{
    while (getEncodingHistoryLength() > kFixedItems)
        remove(*outlets.mEncodingProgressMenu->itemArray().back());
    setClearEncodingHistoryEnabled();
}

void EncodingHistoryMenu::setClearEncodingHistoryEnabled() const
{
    outlets.mClearEncodingHistory->setEnabled(getEncodingHistoryLength() > kFixedItems);
}

} // namespace Kest::App
