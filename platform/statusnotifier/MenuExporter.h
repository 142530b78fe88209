// Exports the menu on the session bus: com.canonical.dbusmenu, version 3.
#pragma once

#include "platform/statusnotifier/AccordionPanel.h"
#include "platform/statusnotifier/Panels.h"

#include <cstdint>
#include <functional>
#include <optional>

namespace Kest::StatusNotifier {

/// The functions of the application that the exporter calls.
struct MenuCallbacks {
    const App::MenuModel& menu; // outlives the exporter
    // `choose` and `menuWillOpen` report changes by `menuChanged` before they return.
    std::function<void(App::ItemId)> choose;
    std::function<void(App::ItemId)> menuWillOpen;
    std::function<void(std::function<void()>)> post; // runs a job later
};

constexpr char kMenuPath[] = "/MenuBar";

/// Main thread only. The bus outlives it.
class MenuExporter {
public:
    MenuExporter(sd_bus* bus, MenuCallbacks menuCallbacks);
    MenuExporter(const MenuExporter&) = delete;
    MenuExporter& operator=(const MenuExporter&) = delete;

    /// Returns a negative errno if the object could not be put on the bus.
    int failure() const { return exportResult; }

    /// Sends the changes to panels: at most one signal of properties to all, one to the accordion panel, and
    /// one of layout for each menu whose items were added, removed or moved. While the bus does not read, the
    /// queue is bounded.
    void menuChanged(const App::MenuChanges& changes);
    /// Sends the whole menu's state if changes were omitted and the queue is empty, otherwise does nothing.
    /// Called after each event of the main loop.
    void catchUp();
    /// Called when a panel starts again: discards what is known about panels, and sends the held layouts.
    void resetPanels();

    // Called by sd-bus.
    int getLayout(sd_bus_message* call);
    int getGroupProperties(sd_bus_message* call);
    int getProperty(sd_bus_message* call);
    int event(sd_bus_message* call);
    int eventGroup(sd_bus_message* call);
    int aboutToShow(sd_bus_message* call);
    int aboutToShowGroup(sd_bus_message* call);

private:
    static constexpr const char* kAllPanels = nullptr;

    std::optional<App::ItemSnapshot> itemAlone(App::ItemId id) const
    {
        return takeSnapshot(callbacks.menu, id, 0);
    }
    bool canSend();
    std::uint64_t queuedMessages() const;
    int sendItemUpdates(const std::vector<ItemUpdate>& items);
    int sendLayoutUpdated(App::ItemId parent, const char* destination);
    void sendLayoutsUpdated(const std::set<App::ItemId>& parents, const char* destination = kAllPanels);
    int appendGroup(sd_bus_message* answer, const std::vector<App::ItemId>& ids, bool isAccordion) const;
    bool handle(const char* client, App::ItemId id, PanelEvent kind);
    void click(const char* client, App::ItemId id);
    void choose(App::ItemId id);
    bool prepare(App::ItemId id);
    void open(App::ItemId id) const;

    sd_bus* bus;
    MenuCallbacks callbacks;
    std::uint32_t revision = 1;
    bool isStale = false; // changes were not sent
    Panels panels;
    AccordionPanel accordion;
    SlotPtr slot;
    int exportResult = 0;
};

} // namespace Kest::StatusNotifier
