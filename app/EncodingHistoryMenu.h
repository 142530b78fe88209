// The menu of the offline encodings since the agent started: their progress, and the actions on each.
#pragma once

#include "app/AbortJobs.h"
#include "app/FrontEnd.h"
#include "app/InterfaceDescription.h"
#include "app/Sender.h"
#include "backend/EncodingStatus.h"

#include <cstdint>
#include <map>
#include <memory>
#include <string>

namespace Kest::Settings {
class Backend;
}

namespace Kest::App {

/// Returns the name of an encoding: the description without a final "_Print" or a final underscore and three
/// characters; empty for a description of less than five bytes.
std::string encodingName(const std::string& description);

/// A row is an item whose tag is the encoder's process id. It belongs to one process: the next process with
/// the same id gets a new row, and the old row does not change. Main thread only; all references outlive it.
class EncodingHistoryMenu {
public:
    EncodingHistoryMenu(const Outlets& menuOutlets, Settings::Backend& settingsBackend, Workspace& desktop,
                        AbortJobs& abortJobs)
        : outlets(menuOutlets), backend(settingsBackend), workspace(desktop), aborts(abortJobs)
    {}

    /// Shows an encoding that the Backend has no record of. `number` is its percentage, negative if it has
    /// failed. Called after `showReported`, which shows records: they may be newer than the message.
    void receivedMsgFromBackend(std::int32_t number, std::int32_t pid, const std::string& description);

    /// Shows a batch of the encodings reported since the previous call, as recorded in the Backend's table,
    /// and removes the rows of evicted records. Returns false if there was nothing to show.
    bool showReported();

    // Actions on the row whose submenu the sender is in.
    void encShowInFinder(Sender sender);
    /// Starts the abort of the encoding, unless it has just finished. The row stays until `abortEnded`.
    void abortEncoding(Sender sender);
    /// Removes the row of an encoding whose abort is complete; after a failure, enables its abort again.
    void abortEnded(const Settings::ProcessIdentity& process, const std::string& failure);
    /// Removes all rows; ends no process and removes no file.
    void clearEncodingHistory(Sender sender);

    void setClearEncodingHistoryEnabled() const;
    /// Returns the number of items, the two fixed ones included.
    int getEncodingHistoryLength() const { return outlets.mEncodingProgressMenu->numberOfItems(); }

private:
    /// The state that a row shows and its actions use, even if newer reports exist. Small: a flood makes
    /// many.
    struct Row {
        Settings::ProcessIdentity process() const { return {item->tag(), startTime}; }
        std::string path() const { return output == nullptr ? std::string() : *output; }

        MenuItem* item;
        std::uint64_t startTime;
        std::unique_ptr<const std::string> output = nullptr; // path of the output file; null without one
        bool wroteToPipe = false;
        bool mayBeAborted = false;
    };
    using Rows = std::multimap<std::int32_t, Row>; // by process id, the newest one last

    void show(const Settings::encodingStatus& status, std::int32_t number);
    void update(Row& row, const Settings::encodingStatus& status, std::int32_t number);
    Rows::iterator newestRow(std::int32_t pid);
    Rows::iterator rowOf(const MenuItem* item);
    Rows::iterator addRow(const Settings::encodingStatus& status, const std::string& title);
    void setAbortEnabled(const Row& row) const;
    void removeEvicted();
    std::unique_ptr<MenuItem> remove(Rows::iterator row);

    const Outlets& outlets;
    Settings::Backend& backend;
    Workspace& workspace;
    AbortJobs& aborts;
    Rows rows;
    // The part of the Backend's table that is shown already.
    std::uint64_t lastReport = 0;
    std::uint64_t evictions = 0;
};

} // namespace Kest::App
