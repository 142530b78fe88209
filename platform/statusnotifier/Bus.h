// sd-bus with owners: what is used of it here, and nothing more.
#pragma once

#include "platform/statusnotifier/MenuProperties.h"

#include <memory>
#include <string>
#include <systemd/sd-bus.h>
#include <systemd/sd-event.h>

namespace Kest::StatusNotifier {

template <typename Object, Object* (*unref)(Object*)>
struct Unref {
    void operator()(Object* object) const { unref(object); }
};
using BusPtr = std::unique_ptr<sd_bus, Unref<sd_bus, sd_bus_flush_close_unref>>;
using MessagePtr = std::unique_ptr<sd_bus_message, Unref<sd_bus_message, sd_bus_message_unref>>;
using SlotPtr = std::unique_ptr<sd_bus_slot, Unref<sd_bus_slot, sd_bus_slot_unref>>;
using EventPtr = std::unique_ptr<sd_event, Unref<sd_event, sd_event_unref>>;

// Each appends to a message and gives sd-bus's result: negative on failure, which spoils the message.
int appendVariant(sd_bus_message* message, const Value& value);
int appendProperties(sd_bus_message* message, const Properties& properties);         // a{sv}
int appendLayout(sd_bus_message* message, const Layout& layout);                     // (ia{sv}av)
int appendStrings(sd_bus_message* message, const std::vector<std::string>& strings); // as

} // namespace Kest::StatusNotifier
