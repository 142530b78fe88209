// A finding: one line in the output of `kest-inspect doctor`.
#pragma once

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace KestInspect {

enum class Severity {
    ok,
    warning, // may be intentional
    error,   // something does not work
};

struct Finding {
    Severity severity = Severity::ok;
    std::string subject; // what was checked; a constant text
    std::string text;    // what was found; may contain any bytes, for example from a file name
    std::string hint;    // what the user can do; empty for an ok finding
};

inline Finding ok(std::string subject, std::string text)
{
    return {Severity::ok, std::move(subject), std::move(text), ""};
}
inline Finding warning(std::string subject, std::string text, std::string hint)
{
    return {Severity::warning, std::move(subject), std::move(text), std::move(hint)};
}
inline Finding error(std::string subject, std::string text, std::string hint)
{
    return {Severity::error, std::move(subject), std::move(text), std::move(hint)};
}

inline std::string severityName(Severity severity)
{
    return severity == Severity::ok ? "ok" : severity == Severity::warning ? "warning" : "error";
}

inline bool hasNoErrors(const std::vector<Finding>& findings)
{
    return std::ranges::none_of(findings,
                                [](const auto& finding) { return finding.severity == Severity::error; });
}

} // namespace KestInspect
