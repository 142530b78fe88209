// Exports the menu on the session bus with the interface com.canonical.dbusmenu, version 3.
#pragma once

#include "platform/statusnotifier/AccordionPanel.h"
#include "platform/statusnotifier/Panels.h"

#include <cstdint>
#include <functional>
#include <optional>

namespace Kest::StatusNotifier {

/// The model and the functions of the application that the exporter uses.
struct MenuCallbacks {
    const App::MenuModel& menu; // must outlive the exporter
    // If `choose` or `menuWillOpen` changes the menu, `MenuExporter::menuChanged` must be called before that
    // function returns.
    std::function<void(App::ItemId)> choose;
    std::function<void(App::ItemId)> menuWillOpen;
    std::function<void(std::function<void()>)> post; // runs a job later, on the main thread
};

constexpr char kMenuPath[] = "/MenuBar";

/// Main thread only. The bus must outlive this object.
class MenuExporter {
public:
    MenuExporter(sd_bus* bus, MenuCallbacks menuCallbacks);
    MenuExporter(const MenuExporter&) = delete;
    MenuExporter& operator=(const MenuExporter&) = delete;

    /// Returns a negative errno if the menu could not be exported; otherwise 0 or more.
    int failure() const { return exportResult; }

    /// Sends signals for the changes, which the menu must already contain. One signal to all panels contains
    /// the changed properties. A second signal, only to the accordion panel, contains the result of
    /// `AccordionPanel::corrections`. A signal LayoutUpdated is sent for each menu whose items were added,
    /// removed or moved. While a panel has a menu open (see `Panels`), LayoutUpdated is held back, and
    /// removed items are sent as invisible. If more than 16 messages wait in the bus's send queue or a signal
    /// cannot be sent, sends no further signals until `resendIfStale` sends the whole state.
    void menuChanged(const App::MenuChanges& changes);
    /// If signals were omitted and the send queue is empty, sends the state of the whole menu; otherwise does
    /// nothing. Call it after each event of the main loop.
    void resendIfStale();
    /// Forgets all panels and sends the LayoutUpdated signals that were held back. Call it when a panel
    /// starts.
    void resetPanels();

    // Called by sd-bus for the methods of the same names. Each returns a negative errno on failure.
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
