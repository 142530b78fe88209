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

/// `id` and `label` must have at most 64 bytes. In a record, only a label of 64 bytes lacks its terminator.
struct Client {
    std::string id;
    std::int32_t type;
    std::string label;
};

/// Fills `header` and `reserved`, which only the host uses, with a pattern.
void fillHostBytes(LIPC::SessionBuffer& session);

/// Returns the lowest index in `clients` of a free record; -1 if there is none.
int freeSlot(const LIPC::SessionBuffer& session);
/// Returns the index in `clients` of the client with this id; -1 if there is none.
int slotOf(const LIPC::SessionBuffer& session, std::string_view id);

/// Writes a client into a free record. Writes the type last and the id immediately before it, so a process
/// that finds the record by its type reads a complete record.
void registerClient(LIPC::ClientEntry& record, const Client& client);
/// Frees a record. Clears the type first, so that no process finds a partly cleared record by its type.
void clearClient(LIPC::ClientEntry& record);
void relabelClient(LIPC::ClientEntry& record, std::string_view label);

} // namespace K3DHostSimulator
