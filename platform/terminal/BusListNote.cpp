#include "platform/terminal/BusListNote.h"

namespace Kest::Terminal {
namespace {

void collectBuses(const App::ItemSnapshot& menu, std::vector<std::string>& names)
{
    for (const auto& item : menu.items) {
        if (item.properties->action == App::Action::setDefaultKestBus)
            names.push_back(item.properties->title);
        collectBuses(item, names);
    }
}

} // namespace

void BusListNote::look(const App::ItemSnapshot& statusMenu, std::time_t now)
{
    std::vector<std::string> buses;
    collectBuses(statusMenu, buses);
    if (buses == names)
        return;
    if (!names.empty())
        changed = now;
    names = std::move(buses);
}

std::string BusListNote::text() const
{
    const auto count = std::to_string(names.size()) + (names.size() == 1 ? " bus" : " buses");
    if (changed == 0)
        return count + ", no change so far";
    std::tm local{};
    localtime_r(&changed, &local);
    char time[16];
    return count + ", changed " + std::string(time, std::strftime(time, sizeof time, "%H:%M:%S", &local));
}

} // namespace Kest::Terminal
