// Owning pointers to sd-bus objects, and functions that append to messages and stop at the first failure.
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
using BusPtr = std::unique_ptr<sd_bus, Unref<sd_bus, sd_bus_close_unref>>; // no flush: it could block
using MessagePtr = std::unique_ptr<sd_bus_message, Unref<sd_bus_message, sd_bus_message_unref>>;
using SlotPtr = std::unique_ptr<sd_bus_slot, Unref<sd_bus_slot, sd_bus_slot_unref>>;
using EventPtr = std::unique_ptr<sd_event, Unref<sd_event, sd_event_unref>>;

/// Passes an owning pointer as the output argument of a function such as `sd_bus_open_user`. At the end of
/// the whole expression, the pointer owns the object that the function has created, or is null.
template <typename Owner>
class Into {
public:
    explicit Into(Owner& owner) : target(owner) {}
    ~Into() { target.reset(made); }
    Into(const Into&) = delete;
    Into& operator=(const Into&) = delete;
    operator typename Owner::pointer *() { return &made; }

private:
    Owner& target;
    typename Owner::pointer made = nullptr;
};

// Each function below returns a negative errno on failure, otherwise 0 or more. After a failure, do not send
// the message.

/// Calls `append` with each element of `range`. Stops after the first negative result.
template <typename Range, typename Append>
int appendEach(const Range& range, Append append)
{
    int result = 0;
    for (const auto& element : range) {
        result = append(element);
        if (result < 0)
            break;
    }
    return result;
}

/// Opens a container in the message, calls `append` to append the elements, and closes the container. `type`
/// and `contents` are arguments of `sd_bus_message_open_container`.
template <typename Append>
int appendContainer(sd_bus_message* message, char type, const char* contents, Append append)
{
    int result = sd_bus_message_open_container(message, type, contents);
    if (result >= 0)
        result = append();
    return result < 0 ? result : sd_bus_message_close_container(message);
}

int appendVariant(sd_bus_message* message, const Value& value);
int appendProperties(sd_bus_message* message, const Properties& properties);         // signature "a{sv}"
int appendStrings(sd_bus_message* message, const std::vector<std::string>& strings); // signature "as"

/// Replies to a method call. `append` gets the reply and appends its arguments. Sends no reply on failure.
/// Return the result of this function from your sd-bus method handler: after a failure, sd-bus then sends an
/// error reply.
template <typename Append>
int reply(sd_bus_message* call, Append append)
{
    MessagePtr answer;
    int result = sd_bus_message_new_method_return(call, Into(answer));
    if (result >= 0)
        result = append(answer.get());
    return result < 0 ? result : sd_bus_send(nullptr, answer.get(), nullptr);
}

} // namespace Kest::StatusNotifier
