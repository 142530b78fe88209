// What a client may ask for: one JSON object in one line.
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
    std::string path;       // of `get` and `choose`, UTF-8
    bool confirmed = false; // "yes": an item that deletes files may be chosen
};

struct ParsedRequest {
    std::optional<Request> request;
    std::string error; // without a request
};

/// Parses a line without its line feed; it may be any bytes. Members with other names are ignored.
ParsedRequest parseRequest(std::string_view line);

} // namespace Kest::Control
