// One line of the output of `kest-inspect doctor`.
#pragma once

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace KestInspect {

enum class Rank {
    ok,
    note,  // may be intentional
    wrong, // prevents something from working
};

struct Finding {
    Rank rank = Rank::ok;
    std::string subject; // what was checked: a fixed text
    std::string text;    // any bytes: contains names of files, users and processes
    std::string remedy;  // empty if there is nothing to do
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
