// Formats the output of kest-inspect as text and as JSON.
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
    std::string text; // UTF-8; control characters from other processes are escaped
    Json json;
};

/// Return the output of a command: "session" prints a snapshot, "doctor" prints findings. Each line of `text`
/// ends with a line feed.
Printed printed(const HostSnapshot& snapshot);
Printed printed(const std::vector<Finding>& findings);

/// Return `json` as ASCII text: `jsonDocument` as several lines that end with a line feed, `jsonLine` as one
/// line without a line feed. Invalid UTF-8 is replaced by U+FFFD, and a number that is not finite by null.
std::string jsonDocument(const Json& json);
std::string jsonLine(const Json& json);

/// Return one part of a snapshot. `text` is one line without a line feed. `number` is an index in
/// `AgentRecord`. For an empty `id`, `printedBus` returns "none" and null.
Printed printedClient(const Client& client);
Printed printedParameter(int number, float value);
Printed printedText(int number, const std::string& value);
Printed printedBus(const std::string& id, const std::string& label);
/// Returns `bits` as text; 0 as "not published yet".
std::string printedVersionWord(std::int32_t bits);

/// Converts a client's id or label from Mac OS Roman to printable UTF-8.
std::string printedName(std::string_view bytes);
/// Returns " (meaning)" with a leading blank; empty if `meaning` is empty.
std::string inBrackets(const std::string& meaning);
/// Returns `text` as a JSON string of valid UTF-8; null if `text` is empty.
Json textOrNull(std::string_view text);

} // namespace KestInspect
