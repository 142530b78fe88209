// The offline encodings of this run: their progress, and what can be done about each.
#pragma once

#include "app/FrontEnd.h"
#include "app/InterfaceDescription.h"
#include "app/Sender.h"

#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>

namespace Kest::Settings {
class Backend;
}

namespace Kest::App {

/// The title of an encoding: its name without a trailing tag of an underscore and three characters, and
/// " - Failed" for a negative percentage. A name of less than five characters gives an empty title.
std::string encodingTitle(std::int32_t percentage, const std::string& description);

/// An entry is an item whose tag is the encoder's process id; the record is the Backend's. Main thread only;
/// all references outlive it.
class EncodingHistoryMenu {
public:
    /// As many as the Backend has records; only a flood of process ids meets it. Then the oldest ones go, a
    /// hundred at once: those that are over first.
    static constexpr int kMostEncodings = 10'000;

    EncodingHistoryMenu(const Outlets& menuOutlets, Settings::Backend& settingsBackend, Workspace& desktop)
        : outlets(menuOutlets), backend(settingsBackend), workspace(desktop)
    {}

    /// Shows an encoding's latest state. `number` is its percentage, negative when it has failed.
    void receivedMsgFromBackend(std::int32_t number, std::int32_t pid, const std::string& description);

    /// The same by what the Backend knows of it; that its last report was a failure is not recorded there.
    void showLatest(std::int32_t pid, bool hasFailed);

    // Actions. The process id is the tag of the entry whose submenu the sender is in.
    void encShowInFinder(Sender sender);
    void abortEncoding(Sender sender);
    /// Forgets all entries; ends no process and removes no file.
    void clearEncodingHistory(Sender sender);

    /// Kills the encoder at once, if it is a known one.
    void stopEncoding(int pid);
    /// Removes the whole folder of the output of a known encoding.
    void deleteEncoding(int pid);

    void setClearEncodingHistoryEnabled() const;
    /// The two fixed items included.
    int getEncodingHistoryLength() const { return outlets.mEncodingProgressMenu->numberOfItems(); }

private:
    void makeRoom();
    std::unique_ptr<MenuItem> remove(const MenuItem& entry);
    MenuItem& entryFor(std::int32_t pid, const std::string& title);

    const Outlets& outlets;
    Settings::Backend& backend;
    Workspace& workspace;
    std::unordered_map<std::int32_t, MenuItem*> entries; // by process id
};

} // namespace Kest::App
