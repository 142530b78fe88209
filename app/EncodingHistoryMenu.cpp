#include "app/EncodingHistoryMenu.h"

#include "app/MessageSlot.h"
#include "backend/Backend.h"
#include "log/Log.h"

#include <juce_core/juce_core.h>

#include <algorithm>
#include <iterator>
#include <vector>

namespace Kest::App {
namespace {

constexpr int kFixedItems = 2;
constexpr std::size_t kMinNameBytes = 5;
constexpr int kTagCharacters = 4; // an underscore and three others
constexpr char kPrintTag[] = "_Print";

juce::String withoutTag(const juce::String& name)
{
    if (name.endsWith(kPrintTag))
        return name.dropLastCharacters(static_cast<int>(std::size(kPrintTag)) - 1);
    const int tag = name.length() - kTagCharacters;
    return tag >= 0 && name[tag] == '_' ? name.substring(0, tag) : name;
}

// Returns the state that the item of an encoding shows; a negative number is a failure.
EncodingState viewOf(const Settings::encodingStatus& status, std::int32_t number)
{
    const bool failed = number < 0;
    return {encodingName(descriptionText(status.name.c_str())), failed ? std::nullopt : std::optional(number),
            failed};
}

} // namespace

std::string encodingName(const std::string& description)
{
    if (description.size() < kMinNameBytes)
        return {};
    return withoutTag(juce::String::fromUTF8(description.c_str())).toStdString();
}

void EncodingHistoryMenu::showUnrecorded(std::int32_t number, std::int32_t pid,
                                         const std::string& description)
{
    // With a record, `showReported` has shown the encoding; without one, the record may have been evicted.
    if (backend.getEncodingStatus(pid).pid == pid || evictionRuns > 0)
        return;
    Settings::encodingStatus status;
    status.pid = status.process.pid = pid;
    status.name = description;
    if (const auto row = newestRow(pid); row != rows.end()) {
        status.process = row->second.process();
        status.hadPipeOpen = row->second.hadPipeOpen;
        status.path = row->second.path();
    }
    show(status, number);
}

bool EncodingHistoryMenu::showReported()
{
    const auto reported =
        backend.encodingReader().query([this](const auto& table) { return table.reportedSince(since); });
    for (const auto& status : reported)
        show(status, status.hasFailed ? -1 : status.percentage);
    removeEvicted();
    return !reported.empty();
}

void EncodingHistoryMenu::removeEvicted()
{
    std::vector<Rows::iterator> evicted;
    backend.encodingReader().query([&](const auto& table) {
        if (evictionRuns == table.evictionRuns())
            return;
        evictionRuns = table.evictionRuns();
        for (auto row = rows.begin(); row != rows.end(); ++row)
            if (table.find(row->second.process()) == nullptr)
                evicted.push_back(row);
    });
    for (const auto row : evicted)
        remove(row);
    setClearEncodingHistoryEnabled();
}

// Takes name and path from one record, so that the row never shows one file while its actions use another.
void EncodingHistoryMenu::show(const Settings::encodingStatus& status, std::int32_t number)
{
    auto found = newestRow(status.pid);
    if (found == rows.end() || found->second.process() != status.process)
        found = addRow(status, viewOf(status, number).title());
    update(found->second, status, number);
    setClearEncodingHistoryEnabled();
}

void EncodingHistoryMenu::update(Row& row, const Settings::encodingStatus& status, std::int32_t number)
{
    row.hadPipeOpen = status.hadPipeOpen;
    row.output = status.path.empty() ? nullptr : std::make_unique<const std::string>(status.path);
    row.mayBeAborted = number < Settings::kFinished; // a failed encoder may still run
    row.item->setEncoding(viewOf(status, number));
    setAbortEnabled(row);
}

EncodingHistoryMenu::Rows::iterator EncodingHistoryMenu::newestRow(std::int32_t pid)
{
    const auto next = rows.upper_bound(pid);
    return next != rows.begin() && std::prev(next)->first == pid ? std::prev(next) : rows.end();
}

EncodingHistoryMenu::Rows::iterator EncodingHistoryMenu::rowOf(const MenuItem* item)
{
    if (item == nullptr)
        return rows.end();
    const auto [begin, end] = rows.equal_range(item->tag());
    const auto found = std::find_if(begin, end, [&](const auto& row) { return row.second.item == item; });
    return found == end ? rows.end() : found;
}

EncodingHistoryMenu::Rows::iterator EncodingHistoryMenu::addRow(const Settings::encodingStatus& status,
                                                                const std::string& title)
{
    auto& item = outlets.mEncodingProgressMenu->insertItem(
        std::make_unique<MenuItem>(ItemProperties{.title = title, .tag = status.pid}),
        getEncodingHistoryLength());
    item.setSubmenu(outlets.mEncodingSubMenu->copy());
    return rows.emplace(status.pid, Row{&item, status.process.startTime});
}

void EncodingHistoryMenu::setAbortEnabled(const Row& row) const
{
    if (auto* abort = row.item->submenu()->itemWithTag(kAbortTag))
        abort->setEnabled(row.mayBeAborted && !aborts.isRunning(row.process()));
}

std::unique_ptr<MenuItem> EncodingHistoryMenu::remove(Rows::iterator row)
{
    auto removed = outlets.mEncodingProgressMenu->removeItem(*row->second.item);
    rows.erase(row);
    return removed;
}

void EncodingHistoryMenu::encShowInFinder(Sender sender)
{
    const auto found = rowOf(sender.menuItem() == nullptr ? nullptr : sender.menuItem()->parentItem());
    if (found == rows.end())
        return;
    const auto output = found->second.path();
    const auto slash = output.rfind('/');
    if (slash != std::string::npos) // selects the folder, not the file
        workspace.selectFile(slash == 0 ? "/" : output.substr(0, slash));
}

void EncodingHistoryMenu::abortEncoding(Sender sender)
{
    const auto found = rowOf(sender.menuItem() == nullptr ? nullptr : sender.menuItem()->parentItem());
    if (found == rows.end())
        return;
    auto& row = found->second;
    // The message that it has finished may be queued, or replaced by one of the next process with this id.
    const auto status = backend.getEncodingStatus(row.process());
    if (status.percentage >= Settings::kFinished && !row.item->properties().encoding->failed)
        return update(row, status, status.percentage);
    const auto& paths = backend.paths();
    const auto failure = aborts.start({.process = row.process(),
                                       .hadPipeOpen = row.hadPipeOpen,
                                       .output = row.path(),
                                       .pipe = paths.encodingProgressFifo,
                                       .settingsFolder = paths.absoluteSettingsFolder()});
    if (!failure.empty())
        Lct::LogAnswer(Lct::eLogError, "abort", "encoding %d: %s", row.process().pid, failure.c_str());
    setAbortEnabled(row);
}

void EncodingHistoryMenu::abortEnded(const Settings::ProcessIdentity& process, const std::string& failure)
{
    // Several rows may match: the history may have been cleared and the encoding shown again.
    auto [row, end] = rows.equal_range(process.pid);
    while (row != end) {
        const auto current = row++;
        if (current->second.process() != process)
            continue;
        if (failure.empty())
            remove(current);
        else
            setAbortEnabled(current->second);
    }
    setClearEncodingHistoryEnabled();
}

void EncodingHistoryMenu::clearEncodingHistory(Sender)
{
    while (getEncodingHistoryLength() > kFixedItems)
        remove(rowOf(outlets.mEncodingProgressMenu->itemArray().back().get()));
    setClearEncodingHistoryEnabled();
}

void EncodingHistoryMenu::setClearEncodingHistoryEnabled() const
{
    outlets.mClearEncodingHistory->setEnabled(getEncodingHistoryLength() > kFixedItems);
}

} // namespace Kest::App
