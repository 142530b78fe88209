// What a client on the bus learns of an item's menu.
#pragma once

#include <string>
#include <systemd/sd-bus.h>
#include <utility>
#include <vector>

namespace Kest::Bench {

constexpr char kMenuPath[] = "/MenuBar";
constexpr char kMenuInterface[] = "com.canonical.dbusmenu";

using Label = std::pair<int, std::string>; // an item's id and what stands in its row

/// Asks an item for its whole menu: the rows with a text, from the top down. Empty when it does not answer.
std::vector<Label> readMenu(sd_bus* bus, const std::string& item);

/// The id of the first row with a text; throws std::runtime_error when there is none.
int idOf(const std::vector<Label>& menu, const std::string& text);

/// The texts that a signal tells of; none unless it is an ItemsPropertiesUpdated.
std::vector<Label> changedLabels(sd_bus_message* signal);

} // namespace Kest::Bench
