// One line of what the doctor says.
#pragma once

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace KestInspect {

enum class Rank {
    ok,
    note,  // may well be meant so
    wrong, // keeps something from working
};

struct Finding {
    Rank rank = Rank::ok;
    std::string subject; // what was looked at, a few words that stay the same
    std::string text;    // any bytes: names of files, users and processes are in it
    std::string remedy;  // empty where all is well
};

inline Finding ok(std::string subject, std::string text)
{
    return {Rank::ok, std::move(subject), std::move(text), ""};
}
inline Finding note(std::string subject, std::string text, std::string remedy)
{
    return {Rank::note, std::move(subject), std::move(text), std::move(remedy)};
}
inline Finding wrong(std::string subject, std::string text, std::string remedy)
{
    return {Rank::wrong, std::move(subject), std::move(text), std::move(remedy)};
}

inline std::string rankName(Rank rank)
{
    return rank == Rank::ok ? "ok" : rank == Rank::note ? "note" : "wrong";
}

inline bool isWell(const std::vector<Finding>& findings)
{
    return std::ranges::none_of(findings, [](const auto& finding) { return finding.rank == Rank::wrong; });
}

} // namespace KestInspect
