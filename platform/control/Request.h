// The requests of clients: one JSON object per line.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace Kest::Control {

constexpr int kProtocol = 1; // version of the protocol; part of the greeting
// Without the line feed.
constexpr std::size_t kMaxRequestBytes = 65'536;

struct Request {
    enum class Command { menu, get, choose, watch };
    Command command = Command::menu;
    std::string path;       // for `get` and `choose`: not empty; otherwise empty
    bool confirmed = false; // the member "yes" is true: an item that deletes files may be chosen
};

struct ParsedRequest {
    std::optional<Request> request;
    std::string error; // why there is no request; empty if there is one
};

/// Parses one line, without its line feed, which may contain any bytes. Ignores unknown members and nested
/// values.
ParsedRequest parseRequest(std::string_view line);

} // namespace Kest::Control
