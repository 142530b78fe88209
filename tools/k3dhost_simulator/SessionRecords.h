// The host's side of the client registry: writing records that others read at the same time.
#pragma once

#include "lipc/SessionBuffer.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace K3DHostSimulator {

constexpr std::int32_t kPannerType = LIPC::clientType("KPAN");
constexpr std::int32_t kReturnType = LIPC::clientType("KRET");
constexpr std::int32_t kSettingsType = LIPC::clientType("KSET");

/// `id` and `label` have at most 64 bytes; a label that has them all is stored without a terminator.
struct Client {
    std::string id;
    std::int32_t type;
    std::string label;
};

/// Fills what belongs to the host alone: the bytes before and behind the records.
void fillHostBytes(LIPC::SessionBuffer& session);

/// The lowest slot that no client has; -1 when all are taken.
int freeSlot(const LIPC::SessionBuffer& session);
/// The slot of the registered client with this id; -1 when there is none.
int slotOf(const LIPC::SessionBuffer& session, std::string_view id);

/// Writes a client into a free record. Nobody finds it, by type or by id, before it is whole.
void registerClient(LIPC::ClientEntry& record, const Client& client);
/// Frees a record. Its type goes first, so that nobody lists what is being taken away.
void clearClient(LIPC::ClientEntry& record);
void relabelClient(LIPC::ClientEntry& record, std::string_view label);

} // namespace K3DHostSimulator
