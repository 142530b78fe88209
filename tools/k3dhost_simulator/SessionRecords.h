// Writes the records of the client registry while other processes read them.
#pragma once

#include "lipc/SessionBuffer.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace K3DHostSimulator {

constexpr std::int32_t kPannerType = LIPC::clientType("KPAN");
constexpr std::int32_t kReturnType = LIPC::clientType("KRET");
constexpr std::int32_t kSettingsType = LIPC::clientType("KSET");

/// `id` and `label` have at most 64 bytes. A label of 64 bytes is stored without a terminator.
struct Client {
    std::string id;
    std::int32_t type;
    std::string label;
};

/// Fills the bytes before and after the records, which only the host writes, with a pattern.
void fillHostBytes(LIPC::SessionBuffer& session);

/// Returns the lowest slot without a client; -1 if there is none.
int freeSlot(const LIPC::SessionBuffer& session);
/// Returns the slot of the client with this id; -1 if there is none.
int slotOf(const LIPC::SessionBuffer& session, std::string_view id);

/// Writes a client into a free record. Writes the type last and the id immediately before it. So a process
/// that finds the record by its type reads a complete record.
void registerClient(LIPC::ClientEntry& record, const Client& client);
/// Frees a record. Clears the type first, so that no process finds a partly cleared record by its type.
void clearClient(LIPC::ClientEntry& record);
void relabelClient(LIPC::ClientEntry& record, std::string_view label);

} // namespace K3DHostSimulator
