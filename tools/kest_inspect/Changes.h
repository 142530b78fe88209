// What is different between two readings.
#pragma once

#include "tools/kest_inspect/Reading.h"

#include <string>
#include <variant>
#include <vector>

namespace KestInspect {

struct HostUp {};
struct HostDown {};
struct VersionWord {
    std::int32_t bits;
};
struct ClientCame {
    Client client;
};
struct ClientWent {
    Client client;
};
struct ClientRenamed {
    Client client;
    std::string before;
};
struct MessagePosted {
    std::int32_t number;
};
struct ParameterChanged {
    int number;
    float value;
};
struct TextChanged {
    int number;
    std::string text;
};
struct DefaultBusChanged {
    std::string id;
    std::string label; // empty when no client has the id
};

using Change = std::variant<HostUp, HostDown, VersionWord, ClientCame, ClientWent, ClientRenamed,
                            MessagePosted, ParameterChanged, TextChanged, DefaultBusChanged>;

/// What happened from `before` to `now`, in the order of a registry: the host, its clients, the agent's
/// record, the default bus. Of a record that was not there before, all that says something.
std::vector<Change> changesBetween(const Reading& before, const Reading& now);

/// The same for a first reading: what is there, or that there is no host.
std::vector<Change> changesUpTo(const Reading& now);

} // namespace KestInspect
