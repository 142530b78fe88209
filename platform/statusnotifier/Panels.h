// Records which submenus each panel knows and which menus are open, to decide when layout signals are sent.
#pragma once

#include "app/MenuSnapshot.h"

#include <map>
#include <set>
#include <string>
#include <utility>

namespace Kest::StatusNotifier {

/// A panel reads the menu in one of two ways.
///
/// Qt's panels read one level at a time: the panel reads a submenu when the user opens it. At that time the
/// panel has already positioned the submenu, and it ignores the next signal LayoutUpdated for the submenu. So
/// each submenu is announced in advance: such a panel gets a LayoutUpdated for it before the user opens it.
///
/// The panels of GTK and GNOME read the whole menu. If rows are added to an open submenu, GTK hides other
/// rows, and MATE and GNOME close the submenu. So LayoutUpdated is held back while such a panel has a menu
/// open.
///
/// Main thread only.
class Panels {
public:
    /// Call it when `panel`, a name on the bus, has read one level of `menu`. Returns the submenus in `menu`
    /// that were not announced to `panel` yet, and records them as announced. Send LayoutUpdated for each of
    /// them.
    std::set<App::ItemId> announceNew(const std::string& panel, const App::ItemSnapshot& menu);

    // The next three functions record the events that panels report. Some panels report events of the status
    // menu only, others those of its submenus only, and a killed panel does not report that a menu closes. So
    // all menus count as closed when the status menu opens. These functions and `reset` return the menus for
    // which LayoutUpdated was held back and must be sent now.
    std::set<App::ItemId> aboutToShow(App::ItemId menu);
    /// Records `menu` as open. Does nothing if `panel` reads one level at a time.
    std::set<App::ItemId> opened(const std::string& panel, App::ItemId menu);
    std::set<App::ItemId> closed(App::ItemId menu);
    /// Forgets all panels and all open menus. Call it when a panel starts.
    std::set<App::ItemId> reset();

    /// Returns whether any menu is recorded as open. If so, records that LayoutUpdated is held back for
    /// `menu`.
    bool holdBackIfOpen(App::ItemId menu);

private:
    std::set<App::ItemId> allClosed();

    // By panel and menu: the submenus that the menu had when the panel last read it.
    std::map<std::pair<std::string, App::ItemId>, std::set<App::ItemId>> announced;
    std::set<App::ItemId> open;
    std::set<App::ItemId> held;
};

} // namespace Kest::StatusNotifier
