// The requests of clients of the control socket: one JSON object per line.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace Kest::Control {

constexpr int kProtocol = 1; // version of the protocol; in the first line to each client
// The maximum length of a request without its line feed.
constexpr std::size_t kMaxRequestBytes = 65'536;

struct Request {
    enum class Command { menu, get, choose, watch };
    Command command = Command::menu;
    std::string path;       // of an item, not empty, for `get` and `choose`; otherwise empty
    bool confirmed = false; // JSON member "yes"; must be true to choose an item that deletes files
};

struct ParsedRequest {
    std::optional<Request> request;
    std::string error; // why there is no request; empty if there is one
};

/// Parses one line. `line` must not include the line feed and may contain any other bytes. Ignores unknown
/// members and nested values.
ParsedRequest parseRequest(std::string_view line);

} // namespace Kest::Control
