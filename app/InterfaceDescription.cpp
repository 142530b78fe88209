#include "app/InterfaceDescription.h"

#include "app/About.h"

namespace Kest::App {
namespace {

using Settings::kSettings;
using Settings::Setting;
using Settings::setting;

/// An item of the menu with its submenu.
struct Row {
    ItemProperties properties;
    bool hasSubmenu = false;
    std::vector<Row> rows;
    MenuItem* Outlets::*itemOutlet = nullptr;
    Menu* Outlets::*menuOutlet = nullptr;

    Row& tag(int tag) { return properties.tag = tag, *this; }
    Row& greyed() { return properties.enabled = false, *this; }
    Row& hidden() { return properties.hidden = true, *this; }
    Row& as(MenuItem* Outlets::*outlet) { return itemOutlet = outlet, *this; }
    Row& menuAs(Menu* Outlets::*outlet) { return menuOutlet = outlet, *this; }
};

Row item(const std::string& title, Action action, Mark mark = Mark::none)
{
    Row row;
    row.properties.title = title;
    row.properties.action = action;
    row.properties.mark = mark;
    return row;
}

Row toggle(const Setting& setting)
{
    return item(setting.title, Action::toggleSetting, Mark::check)
        .tag(static_cast<int>(&setting - kSettings));
}
Row radio(const char* title, Action action) { return item(title, action, Mark::radio); }

Row separator()
{
    Row row;
    row.properties.separator = true;
    return row;
}

Row submenu(const char* title, std::vector<Row> rows = {})
{
    Row row = item(title, Action::none);
    row.hasSubmenu = true;
    row.rows = std::move(rows);
    return row;
}

constexpr char kAboutTitle[] = "About Kest Settings";

std::vector<Row> aboutRows()
{
    return {
        item(about().name, Action::none).greyed(),
        item("Version " + about().version, Action::none).greyed(),
        item("Licence " + about().licence, Action::none).greyed(),
    };
}

// To add an item: a line here, an `Action`, a line in the delegate's `perform`. A toggle needs only a line
// here.
std::vector<Row> statusMenuRows(bool hasAboutPanel)
{
    // clang-format off
    using A = Action;
    using O = Outlets;
    return {
        submenu(setting("SoloMode").title, {
            radio("Latch", A::setSoloModeLatch).as(&O::mSoloModeLatchMenuItem),
            radio("Exclusive (XOR)", A::setSoloModeXOR).as(&O::mSoloModeXORMenuItem),
        }),
        submenu("Default Bus").menuAs(&O::mDefaultBusMenu),
        submenu(setting("PhysMonConfig").title).menuAs(&O::mSpeakerConfMenu),

        item("Facility", A::none).greyed().as(&O::mFacilityMenuItem), // a heading, hidden at start-up
        submenu(setting("Facility").title).menuAs(&O::mFacilityMenu),
        submenu("Second Monitoring Facility") // hidden at start-up: the host knows one facility
            .as(&O::mFacilityMenuItem2).menuAs(&O::mFacilityMenu2),

        separator(),
        submenu(setting("HdxAuxTrackDelaySetting").title, {
            radio("Off", A::setHdxAuxTrackDelay).tag(0),
            radio("Low Latency", A::setHdxAuxTrackDelay).tag(1),
            radio("High Latency", A::setHdxAuxTrackDelay).tag(2),
        }).menuAs(&O::mHdxAuxMenu),
        submenu("DAW Type", { // hidden: choosing one has no effect
            radio("Native", A::setDAWType).tag(0),
            radio("HDX", A::setDAWType).tag(1),
        }).hidden(),
        toggle(setting("DAWLinkControlSetting")).as(&O::mDAWLinkControlMenu),
        toggle(setting("LatencyCompensationControlSetting")).as(&O::mLatencyCompensationControlMenu),
        toggle(setting("defaultPannerObjects")).greyed().hidden(), // not offered

        separator(),
        submenu("Encoding History", {
            item("Clear History", A::clearEncodingHistory).greyed().as(&O::mClearEncodingHistory),
            separator(),
        }).menuAs(&O::mEncodingProgressMenu),
        separator(),

        item("Restart Host Service", A::restartService),
        submenu("Architecture", {
            item("32 Bit", A::switchTo32),
            item("64 Bit", A::switchTo64),
        }),
        item("Open Uninstaller", A::openUninstaller),

        separator(),
        hasAboutPanel ? item(kAboutTitle, A::showAboutDialog) : submenu(kAboutTitle, aboutRows()),
        item("Quit Kest Settings", A::terminate),
    };
    // clang-format on
}

std::vector<Row> encodingRows()
{
    return {
        item("Show Output Folder", Action::encShowInFinder).tag(1),
        item("Abort and Delete Output Folder", Action::abortEncoding).tag(kAbortTag),
    };
}

void fill(Menu& menu, const std::vector<Row>& rows, MenuModel& model, Outlets& outlets)
{
    for (const auto& row : rows) {
        auto& added = menu.addItem(std::make_unique<MenuItem>(row.properties));
        if (row.itemOutlet != nullptr)
            outlets.*row.itemOutlet = &added;
        if (added.properties().action == Action::toggleSetting)
            outlets.toggles.at(static_cast<std::size_t>(added.tag())) = &added;
        if (!row.hasSubmenu)
            continue;
        added.setSubmenu(std::make_unique<Menu>(model));
        if (row.menuOutlet != nullptr)
            outlets.*row.menuOutlet = added.submenu();
        fill(*added.submenu(), row.rows, model, outlets);
    }
}

} // namespace

Outlets loadInterface(MenuModel& model, bool hasAboutPanel)
{
    Outlets outlets;
    fill(model.statusMenu(), statusMenuRows(hasAboutPanel), model, outlets);
    outlets.mEncodingSubMenu = std::make_unique<Menu>(model);
    fill(*outlets.mEncodingSubMenu, encodingRows(), model, outlets);
    return outlets;
}

} // namespace Kest::App
