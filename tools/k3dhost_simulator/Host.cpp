#include "tools/k3dhost_simulator/Host.h"

#include "lipc/SettingsRecord.h"
#include "text/Printable.h"

#include <cstring>
#include <utility>

namespace K3DHostSimulator {
namespace {

using Kest::Text::escapedBytes;
using Kest::Text::printable;

constexpr std::chrono::seconds kForeignCheckInterval{1};
constexpr std::int32_t kVersionHostData = 0x0003'0001;

const Client kFixedClients[] = {
    {"engine-1", LIPC::kMixEngineType, "Mixing Engine"},
    {"panner-1", kPannerType, "Panner 1"},
    {"return-1", kReturnType, "Return 1"},
};
const Client kSettingsClient = {LIPC::kSettingsClientName, kSettingsType, "Kest Settings"};

std::string busLine(const std::string& id, std::string_view name)
{
    return "bus " + escapedBytes(id) + " " + escapedBytes(name);
}

} // namespace

Host::Host(Print event, Print write) : printEvent(std::move(event)), printWrite(std::move(write)) {}

// Applies one change to a record in the segment and in the watcher's expected session.
template <typename Change>
void Host::change(int slot, Change apply)
{
    apply(watcher->expected().clients[slot]);
    apply(segments.session()->clients[slot]);
}

void Host::registerAs(int slot, const Client& client)
{
    change(slot, [&](auto& record) { registerClient(record, client); });
}

Failure Host::start(int wordSize, bool withSettings)
{
    stop();
    if (auto failure = segments.create())
        return failure;
    expectedVersion = {kVersionHostData, wordSize};
    segments.version()->hostData = kVersionHostData;
    LIPC::storeShared(segments.version()->wordSize, std::int32_t{wordSize});

    watcher = std::make_unique<WriteWatcher>();
    fillHostBytes(*segments.session());
    fillHostBytes(watcher->expected());
    int slot = 0;
    for (const auto& client : kFixedClients)
        registerAs(slot++, client);
    if (withSettings)
        registerAs(slot, kSettingsClient);

    nextForeignCheck = std::chrono::steady_clock::now() + kForeignCheckInterval;
    printEvent("host started, " + std::to_string(wordSize) + " bit" +
               (withSettings ? "" : ", without KestSettings"));
    return std::nullopt;
}

void Host::stop()
{
    if (watcher == nullptr)
        return;
    // A text is reported in the second call.
    printAgentWrites();
    printAgentWrites();
    printForeignWrites();
    segments.remove();
    watcher.reset();
    printEvent("host stopped");
}

Failure Host::addBus(const std::string& id, const std::string& name)
{
    if (watcher == nullptr)
        return "the host is not running";
    if (slotOf(watcher->expected(), id) >= 0)
        return "client '" + escapedBytes(id) + "' already exists";
    const int slot = freeSlot(watcher->expected());
    if (slot < 0)
        return "no slot is free";
    registerAs(slot, {id, LIPC::kBusType, name});
    printEvent(busLine(id, name) + " added");
    return std::nullopt;
}

Failure Host::removeBus(const std::string& id)
{
    int slot = -1;
    if (auto failure = findBus(id, slot))
        return failure;
    const std::string name(watcher->expected().clients[slot].labelText());
    change(slot, clearClient);
    printEvent(busLine(id, name) + " removed");
    return std::nullopt;
}

Failure Host::renameBus(const std::string& id, const std::string& name)
{
    int slot = -1;
    if (auto failure = findBus(id, slot))
        return failure;
    const std::string before(watcher->expected().clients[slot].labelText());
    change(slot, [&](auto& record) { relabelClient(record, name); });
    printEvent(busLine(id, before) + " renamed to " + escapedBytes(name));
    return std::nullopt;
}

Failure Host::postMessage(float number)
{
    if (watcher == nullptr)
        return "the host is not running";
    const int slot = slotOf(watcher->expected(), LIPC::kSettingsClientName);
    if (slot < 0)
        return "the host has no client KestSettings to post a message to";
    change(slot, [number](auto& record) {
        LIPC::storeShared(record.params[LIPC::kStatusNumberParameter], number);
    });
    printEvent("message " + printable(number));
    return std::nullopt;
}

Failure Host::findBus(const std::string& id, int& slot)
{
    if (watcher == nullptr)
        return "the host is not running";
    slot = slotOf(watcher->expected(), id);
    if (slot < 0 || watcher->expected().clients[slot].type != LIPC::kBusType)
        return "no bus has the id '" + escapedBytes(id) + "'";
    return std::nullopt;
}

void Host::printWrites()
{
    if (watcher == nullptr)
        return;
    printAgentWrites();
    const auto now = std::chrono::steady_clock::now();
    if (now < nextForeignCheck)
        return;
    nextForeignCheck = now + kForeignCheckInterval;
    printForeignWrites();
}

void Host::printAgentWrites()
{
    for (const auto& line : watcher->takeAgentWrites(*segments.session()))
        printWrite(line);
}

void Host::printForeignWrites()
{
    for (const auto& line : watcher->takeForeignWrites(*segments.session()))
        printWrite(line);
    const auto& version = *segments.version();
    if (std::memcmp(&version, &expectedVersion, sizeof version) == 0)
        return;
    const bool inWordSize = version.hostData == expectedVersion.hostData;
    printWrite("FOREIGN WRITE at offset " + std::string(inWordSize ? "4" : "0") + " of LIPC_VERSION");
    expectedVersion = version;
}

} // namespace K3DHostSimulator
