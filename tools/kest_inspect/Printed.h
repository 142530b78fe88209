// The output of the tool: each part as text for a terminal and as JSON for programs.
#pragma once

#include "tools/kest_inspect/Finding.h"
#include "tools/kest_inspect/HostSnapshot.h"

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace KestInspect {

using Json = nlohmann::ordered_json;

// NOLINTNEXTLINE(bugprone-exception-escape): moving a JSON value does not throw
struct Printed {
    std::string text; // UTF-8, without control characters of other processes
    Json json;
};

/// `text` is several lines, each with its line feed.
Printed printed(const HostSnapshot& snapshot);
Printed printed(const std::vector<Finding>& findings);

/// Returns ASCII, whatever bytes `json` contains: several lines, each with its line feed, or one line without
/// one. A number that is not finite is null.
std::string jsonDocument(const Json& json);
std::string jsonLine(const Json& json);

/// Parts of a snapshot; `text` is one line without a line feed.
Printed printedClient(const Client& client);
Printed printedParameter(int number, float value);
Printed printedText(int number, const std::string& value);
Printed printedBus(const std::string& id, const std::string& label); // "none" without an id
std::string printedVersionWord(std::int32_t bits);

/// Returns a client's id or label for a terminal.
std::string printedName(std::string_view bytes);
/// Returns a blank and `meaning` in brackets; empty if `meaning` is empty.
std::string inBrackets(const std::string& meaning);
Json textOrNull(std::string_view text);

} // namespace KestInspect
