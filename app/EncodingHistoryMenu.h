// The menu of the offline encodings since the agent started, with their progress and actions.
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

/// Returns the name of an encoding. `description` is the name of its output file, in UTF-8. Removes a final
/// "_Print". If there is none, but the fourth character from the end is an underscore, removes the last four
/// characters. Returns an empty text if `description` has fewer than five bytes.
std::string encodingName(const std::string& description);

/// Shows one row per encoding. A row is an item whose tag is the encoder's process id. Each row belongs to
/// one process. If the system uses the process id again, the next process gets a new row, and the row of the
/// earlier process does not change. Main thread only. All references must outlive this object.
class EncodingHistoryMenu {
public:
    EncodingHistoryMenu(const Outlets& menuOutlets, Settings::Backend& settingsBackend, Workspace& desktop,
                        AbortJobs& abortJobs)
        : outlets(menuOutlets), backend(settingsBackend), workspace(desktop), aborts(abortJobs)
    {}

    /// Shows the encoding of process `pid`, for which the Backend has no record. Does nothing if the Backend
    /// has a record of `pid`, or has ever evicted a record of any process. `number` is the percentage; a
    /// negative number means that the encoding has failed. Call `showReported` first, which shows the
    /// encodings that have a record.
    void showUnrecorded(std::int32_t number, std::int32_t pid, const std::string& description);

    /// Shows the encodings whose encoder has reported a percentage or an error since the previous call, at
    /// most 250 in one call. Removes the rows whose records the Backend has evicted. Returns whether there
    /// was an encoding to show. To show all encodings, call this function until it returns false.
    bool showReported();

    // Actions. For the next two, `sender` is an item in the submenu of a row; other senders have no effect.
    /// Shows the folder of the encoding's output file in the file manager. Does nothing if the path of the
    /// file is unknown.
    void encShowInFinder(Sender sender);
    /// Starts the abort of the encoding. If the encoding has finished according to the Backend's record, only
    /// updates the row. The row remains until `abortEnded`. If the abort cannot be started, logs one line.
    void abortEncoding(Sender sender);
    /// Must be called when the abort of `process` has ended. If `failure` is empty, the abort is complete:
    /// removes all rows of `process`, usually one. Otherwise keeps the rows. Enables the abort item of a row
    /// again if its encoding has not finished.
    void abortEnded(const Settings::ProcessIdentity& process, const std::string& failure);
    /// Removes all rows. Does not end a process or delete a file. Ignores the sender.
    void clearEncodingHistory(Sender sender);

    /// Enables the item "Clear History" if there is a row, and greys it if there is none.
    void setClearEncodingHistoryEnabled() const;
    /// Returns the number of items in the menu: the rows, "Clear History" and a separator.
    int getEncodingHistoryLength() const { return outlets.mEncodingProgressMenu->numberOfItems(); }

private:
    /// A row's item, and the values that its actions use, even if the Backend has newer ones. Kept small,
    /// because there can be thousands of rows.
    struct Row {
        Settings::ProcessIdentity process() const { return {item->tag(), startTime}; }
        std::string path() const { return output == nullptr ? std::string() : *output; }

        MenuItem* item;
        std::uint64_t startTime;
        std::unique_ptr<const std::string> output = nullptr; // path of the output file; null if unknown
        bool hadPipeOpen = false;
        bool mayBeAborted = false;
    };
    using Rows = std::multimap<std::int32_t, Row>; // by process id, then by age: newest last

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
    std::uint64_t since = 0;        // for `reportedSince` of the Backend's table
    std::uint64_t evictionRuns = 0; // the table's `evictionRuns` at the last check
};

} // namespace Kest::App
