// Readings, changes and findings as a program reads them.
#pragma once

#include "tools/kest_inspect/Changes.h"
#include "tools/kest_inspect/Finding.h"

#include <string>
#include <vector>

namespace KestInspect {

/// A document of several lines, each with its line feed. All JSON here is ASCII, whatever bytes it tells of;
/// a number that is not finite is null.
std::string asJson(const Reading& reading);
std::string asJson(const std::vector<Finding>& findings);

/// One line without a line feed. `time` says when it was seen.
std::string asJson(const Change& change, const std::string& time);

} // namespace KestInspect
