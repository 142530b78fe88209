// The requests of clients: one JSON object per line.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace Kest::Control {

constexpr int kProtocol = 1; // version of the protocol, in the greeting
constexpr std::size_t kMaxRequestBytes = 65'536;

struct Request {
    enum class Command { menu, get, choose, watch };
    Command command = Command::menu;
    std::string path;       // for `get` and `choose`, UTF-8
    bool confirmed = false; // "yes": the item may delete files
};

struct ParsedRequest {
    std::optional<Request> request;
    std::string error; // if there is no request
};

/// Parses a line of any bytes, without its line feed. Ignores members with other names.
ParsedRequest parseRequest(std::string_view line);

} // namespace Kest::Control
