// Panels that read one level of the menu at a time: KDE's.
#pragma once

#include "app/MenuSnapshot.h"

#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace Kest::StatusNotifier {

/// Such a panel reads a submenu when the user opens it: too late to place it on the screen by its size. The
/// next LayoutUpdated for a submenu that was read this way is lost. So each submenu is announced to the panel
/// before. Main thread only.
class LevelReaders {
public:
    /// Returns the submenus in `menu` that were not announced to `reader` yet. They count as announced.
    std::vector<App::ItemId> unannounced(const std::string& reader, const App::ItemSnapshot& menu);
    void forget() { announced.clear(); }

private:
    // By reader and menu; holds only submenus that the menu had when it was read last.
    std::map<std::pair<std::string, App::ItemId>, std::set<App::ItemId>> announced;
};

} // namespace Kest::StatusNotifier
