#include "tools/k3dhost_simulator/SessionRecords.h"

#include "tables/Settings.h"

#include <algorithm>
#include <cstring>

namespace K3DHostSimulator {
namespace {

// A text's type word is valid only in the process that created the text. This one is not an address, so that
// no process can use it.
constexpr std::uint64_t kTypeWord = 0x4B33'4448'4F53'5401;

// The initial value of the agent's parameters. The agent never writes it.
constexpr float kUnwritten = -1.0F;

void fillPattern(unsigned char* bytes, std::size_t count, unsigned seed)
{
    for (std::size_t i = 0; i < count; ++i)
        bytes[i] = static_cast<unsigned char>(seed + i * 31);
}

// Writes the id's first character last, because the agent finds its record by the id alone.
void publishId(LIPC::ClientID& shared, const std::string& text)
{
    const LIPC::ClientID id(text.c_str());
    auto* to = reinterpret_cast<char*>(&shared);
    const auto* from = reinterpret_cast<const char*>(&id);
    std::memcpy(to + 1, from + 1, sizeof id - 1);
    LIPC::storeShared(*to, *from);
}

} // namespace

void fillHostBytes(LIPC::SessionBuffer& session)
{
    fillPattern(session.header, sizeof session.header, 0x4B);
    fillPattern(session.reserved, sizeof session.reserved, 0xA5);
}

int freeSlot(const LIPC::SessionBuffer& session)
{
    for (int slot = 0; slot < LIPC::SessionBuffer::kSlots; ++slot)
        if (LIPC::loadShared(session.clients[slot].type) == 0)
            return slot;
    return -1;
}

int slotOf(const LIPC::SessionBuffer& session, std::string_view id)
{
    for (int slot = 0; slot < LIPC::SessionBuffer::kSlots; ++slot) {
        const auto& client = session.clients[slot];
        if (LIPC::loadShared(client.type) != 0 && client.id.text() == id)
            return slot;
    }
    return -1;
}

void registerClient(LIPC::ClientEntry& record, const Client& client)
{
    for (auto& text : record.strings)
        std::memcpy(static_cast<void*>(&text), &kTypeWord, sizeof kTypeWord);
    if (client.type == kSettingsType)
        for (const auto& setting : Kest::Settings::kParameterSettings)
            LIPC::storeShared(record.params[setting.number], kUnwritten);
    record.aux32 = 0x0A0B0C0D;
    record.auxA16 = 0x1A1B;
    record.auxB16 = 0x2A2B;
    relabelClient(record, client.label);
    publishId(record.id, client.id);
    LIPC::storeShared(record.type, client.type);
}

void clearClient(LIPC::ClientEntry& record)
{
    // With acquire semantics too, so that the rest cannot be cleared before it.
    __atomic_exchange_n(&record.type, 0, __ATOMIC_ACQ_REL);
    std::memset(static_cast<void*>(&record), 0, sizeof record);
}

void relabelClient(LIPC::ClientEntry& record, std::string_view label)
{
    char padded[sizeof record.label] = {};
    std::memcpy(padded, label.data(), std::min(label.size(), sizeof padded));
    std::memcpy(record.label, padded, sizeof padded);
}

} // namespace K3DHostSimulator
