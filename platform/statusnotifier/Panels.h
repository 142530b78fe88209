// Tracks the panels that show the menu: the submenus that each one knows, and when layouts are held back.
#pragma once

#include "app/MenuSnapshot.h"

#include <map>
#include <set>
#include <string>
#include <utility>

namespace Kest::StatusNotifier {

/// A panel reads the menu in one of two ways.
///
/// One level at a time, as Qt does: it reads a submenu when the user opens it, too late to position it by its
/// size. The next LayoutUpdated for a submenu that was read this way is lost. So each submenu is announced to
/// the panel before.
///
/// The whole menu, as GTK and GNOME do: rows added to an open submenu are not shown. GTK hides other rows
/// instead, MATE and GNOME close the submenu. So layouts are held while such a panel has a menu open.
///
/// Main thread only.
class Panels {
public:
    /// Returns the submenus in `menu` that were not announced to `panel` yet, and records them as announced.
    /// `panel` has read `menu` without its submenus.
    std::set<App::ItemId> unannounced(const std::string& panel, const App::ItemSnapshot& menu);

    // Events that panels report: some only of the whole menu, others only of its submenus; a killed panel
    // reports no closing. Each returns the held layouts to send now.
    std::set<App::ItemId> aboutToShow(App::ItemId menu);
    std::set<App::ItemId> opened(const std::string& panel, App::ItemId menu);
    std::set<App::ItemId> closed(App::ItemId menu);
    std::set<App::ItemId> reset(); // before other panels

    /// Returns whether the menu's layout must be held back, and records it if so.
    bool holdBack(App::ItemId menu);

private:
    std::set<App::ItemId> allClosed();

    // By panel and menu: the submenus that the menu had when it was last read.
    std::map<std::pair<std::string, App::ItemId>, std::set<App::ItemId>> announced;
    std::set<App::ItemId> open;
    std::set<App::ItemId> held;
};

} // namespace Kest::StatusNotifier
